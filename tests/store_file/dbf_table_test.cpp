#include "store/dbf_table.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "base/failure.h"
#include "platform/system.h"
#include "store/schema.h"
#include "tests/support/table_file.h"
#include "tests/support/temp_folder.h"

namespace {

using pktaus::CDbfTable;
using pktaus::DbfFault;
using support::TableFile;

void PutNumber(std::string* bytes, std::size_t at, unsigned value, int size) {
  for (int i = 0; i < size; ++i) (*bytes)[at + i] = static_cast<char>(value >> (8 * i));
}

// Two columns, so a header of 97 bytes, and three records of 31 bytes, the second one deleted.
std::string SmallTable() {
  TableFile table({{"PT_NO", 'C', 15, 0}, {"EAST", 'N', 15, 4}});
  table.Add({{"PT_NO", "1"}, {"EAST", "1.5"}});
  table.Add({{"PT_NO", "2"}}, true);
  table.Add({{"PT_NO", "3"}});
  return table.Bytes();
}
constexpr std::size_t kHeader = 97;
constexpr std::size_t kRecord = 31;

std::string ManyFields(int count) {
  std::vector<support::TableColumn> columns;
  for (int i = 0; i < count; ++i) columns.push_back({"F" + std::to_string(i), 'C', 1, 0});
  return TableFile(columns).Bytes();
}

struct BrokenTable {
  const char* name;
  std::function<void(std::string*)> defect;
  DbfFault::Kind kind;
  std::uint64_t offset;
  std::int64_t record;
};

using Text = std::string;
const BrokenTable kBroken[] = {
    {"empty file", [](Text* t) { t->clear(); }, DbfFault::kHeaderCut, 0, 0},
    {"fixed header cut", [](Text* t) { t->resize(32); }, DbfFault::kHeaderCut, 32, 0},
    {"descriptor cut", [](Text* t) { t->resize(45); }, DbfFault::kHeaderCut, 45, 0},
    {"no byte for 0x0D", [](Text* t) { t->resize(96); }, DbfFault::kHeaderCut, 96, 0},
    {"0x0D overwritten", [](Text* t) { (*t)[96] = 0; }, DbfFault::kNoTerminator, 96, 0},
    {"0x0D one field too early", [](Text* t) { (*t)[64] = '\r'; }, DbfFault::kHeaderLength, 64, 0},
    {"header length of another form", [](Text* t) { PutNumber(t, 8, 98, 2); }, DbfFault::kHeaderLength, 8, 0},
    {"header length 0", [](Text* t) { PutNumber(t, 8, 0, 2); }, DbfFault::kHeaderLength, 8, 0},
    {"header with a link behind it",
     [](Text* t) {
       PutNumber(t, 8, kHeader + 263, 2);
       t->insert(kHeader, 263, '\0');
     },
     DbfFault::kHeaderLength, 8, 0},
    {"record length too small", [](Text* t) { PutNumber(t, 10, kRecord - 1, 2); }, DbfFault::kRecordLength, 10, 0},
    {"width beyond a byte, in the decimals",
     [](Text* t) {
       (*t)[49] = 1;
       PutNumber(t, 10, kRecord + 256, 2);
     },
     DbfFault::kRecordLength, 10, 0},
    {"encrypted", [](Text* t) { (*t)[15] = 1; }, DbfFault::kEncrypted, 15, 0},
    {"256 fields", [](Text* t) { *t = ManyFields(256); }, DbfFault::kTooManyFields, 8, 0},
    {"two fields without a name", [](Text* t) { (*t)[32] = (*t)[64] = '\0'; }, DbfFault::kFieldName, 64, 0},
    {"last record cut", [](Text* t) { t->resize(kHeader + 3 * kRecord - 1); }, DbfFault::kRecordCut,
     kHeader + 2 * kRecord, 3},
    {"deleted record cut", [](Text* t) { t->resize(kHeader + 2 * kRecord - 1); }, DbfFault::kRecordCut,
     kHeader + kRecord, 2},
    {"flag of the second record lost", [](Text* t) { (*t)[kHeader + kRecord] = '\0'; }, DbfFault::kRecordFlag,
     kHeader + kRecord, 2},
    {"end mark in the middle", [](Text* t) { (*t)[kHeader] = '\x1a'; }, DbfFault::kRecordFlag, kHeader, 1},
    {"count too high with rubbish behind",
     [](Text* t) {
       PutNumber(t, 4, 4, 4);
       *t += 'x';
     },
     DbfFault::kRecordFlag, kHeader + 3 * kRecord, 4},
};

TEST(DbfTable, TellsWhatIsBrokenAndWhereAndLeavesTheFile) {
  const support::TempFolder folder;
  for (const BrokenTable& broken : kBroken) {
    SCOPED_TRACE(broken.name);
    std::string bytes = SmallTable();
    broken.defect(&bytes);
    const std::string path = folder.Write("punkte.dbf", bytes);
    DbfFault why;
    EXPECT_EQ(CDbfTable::Load(path.c_str(), &why), nullptr);
    EXPECT_EQ(why.kind, broken.kind);
    EXPECT_EQ(why.offset, broken.offset);
    EXPECT_EQ(why.record, broken.record);
    try {
      pktaus::schema_extend(path.c_str());
      ADD_FAILURE() << "not refused";
    } catch (const CException& failure) {
      const std::string& text = failure.ErrorText();
      EXPECT_NE(text.find("Die Punkttabelle '" + path + "'"), std::string::npos) << text;
      EXPECT_NE(text.find("(Stelle " + std::to_string(broken.offset)), std::string::npos) << text;
      EXPECT_EQ(text.find("Unbekannt"), std::string::npos) << text;
    }
    EXPECT_TRUE(support::BytesOf(path) == bytes);
  }
}

TEST(DbfTable, WorksTheNumberOfRecordsOutAnew) {
  const struct {
    const char* name;
    unsigned counted;
    std::size_t cut;  // from the end
    std::string behind;
    std::int32_t records;
  } kCounts[] = {
      {"right", 3, 0, "", 2},
      {"none counted", 0, 0, "", 2},
      {"too many, nothing behind", 0xFFFFFFFF, 0, "", 2},
      {"too many, zero bytes behind", 9, 0, std::string(500, '\0') + "\x1a", 2},
      {"no end mark", 3, 1, "", 2},
      {"no end mark and a record less than counted", 3, 1 + kRecord, "", 1},
      {"rubbish behind the records that are counted", 3, 0, "rest", 2},
      {"rubbish without an end mark", 3, 1, "rest", 2},
      {"a record that is not counted", 2, 0, "", 2},
  };
  const support::TempFolder folder;
  for (const auto& one : kCounts) {
    std::string bytes = SmallTable();
    PutNumber(&bytes, 4, one.counted, 4);
    bytes.resize(bytes.size() - one.cut);
    const std::string path = folder.Write("a.dbf", bytes + one.behind);
    DbfFault why;
    const auto table = CDbfTable::Load(path.c_str(), &why);
    ASSERT_NE(table, nullptr) << one.name;
    EXPECT_EQ(why.kind, DbfFault::kNone);
    EXPECT_EQ(table->record_count(), one.records) << one.name;
  }
}

TEST(DbfTable, GivesNoTableForWhatCannotBeOpened) {
  EXPECT_EQ(DbfFault().kind, DbfFault::kUnknown);
  const support::TempFolder folder;
  const std::string folder_path = folder.path();
  const std::string missing = folder.File("fehlt.dbf");
  const struct {
    const char* path;
    int error;
  } kPaths[] = {{nullptr, ENOENT}, {"", ENOENT}, {missing.c_str(), ENOENT}, {folder_path.c_str(), EISDIR}};
  for (const auto& one : kPaths) {
    EXPECT_EQ(CDbfTable::Load(one.path), nullptr);
    platform::SetLastSystemError(0);
    bool raised = false;
    try {
      pktaus::schema_extend(one.path);
    } catch (const CException&) {
      ADD_FAILURE() << "the guard would take it for a failure of the framework";
    } catch (...) {
      raised = true;
      EXPECT_EQ(platform::LastSystemError(), one.error);
    }
    EXPECT_TRUE(raised);
  }
}

TEST(DbfTable, NamesFieldsUniquely) {
  CDbfTable table;
  const struct {
    const char* name;
    const char* short_name;
  } kNames[] = {
      {"NE_AUFTRAG", "NE_AUFTRAG"},
      {"NE_AUFTRAG", "NE_AUFTRAa"},
      {"NE_AUFTRAGSNUMMER", "NE_AUFTRAb"},
      {"NE_AUFTRAc", "NE_AUFTRAc"},
      {"NE_AUFTRAG4", "NE_AUFTRAd"},
      {"ne_auftrag", "ne_auftrag"},
      {"PKN_ABM_BZA", "PKN_ABM_BZ"},
      {"X", "X"},
      {"X", "a"},
      {"a", "b"},
      {"", ""},
  };
  int offset = 1;
  for (const auto& one : kNames) {
    const pktaus::DbfField* field = table.AddField(one.name, 'C', 3, 0);
    ASSERT_NE(field, nullptr) << one.name;
    EXPECT_STREQ(field->short_name, one.short_name);
    EXPECT_STREQ(field->name, one.name);
    EXPECT_EQ(field->offset, offset);
    offset += 3;
  }
  EXPECT_EQ(table.header_size(), 33 + 32 * static_cast<int>(std::size(kNames)));
  EXPECT_EQ(table.record_size(), offset);
  EXPECT_EQ(table.FindField("NE_AUFTRAG"), &table.field(0));
  EXPECT_EQ(table.FindField("PKN_ABM_BZA"), &table.field(6));
  EXPECT_EQ(table.FindField("PKN_ABM_BZ"), nullptr);
  EXPECT_EQ(table.FindField("NE_AUFTRAa"), nullptr);
  EXPECT_EQ(table.AddField("", 'C', 3, 0), nullptr);

  for (char last = 'e'; last <= 'z'; ++last) EXPECT_NE(table.AddField("NE_AUFTRAG", 'C', 0, 0), nullptr);
  DbfFault why;
  EXPECT_EQ(table.AddField("NE_AUFTRAG", 'C', 0, 0, &why), nullptr);
  EXPECT_EQ(why.kind, DbfFault::kFieldName);
}

TEST(DbfTable, KnowsItsLimits) {
  const support::TempFolder folder;
  const std::string path = folder.Write("a.dbf", SmallTable());
  const auto table = CDbfTable::Load(path.c_str());
  ASSERT_NE(table, nullptr);
  DbfFault why;
  EXPECT_EQ(table->AddField("A", 'C', 256, 0), nullptr);
  EXPECT_EQ(table->AddField("A", 'C', -1, 0), nullptr);
  EXPECT_NE(table->AddField("A", 'C', 255, 255), nullptr);
  EXPECT_NE(table->AddField("B", 'C', 145, 0), nullptr);
  EXPECT_EQ(table->AddField("C", 'C', 1, 0, &why), nullptr);
  EXPECT_EQ(why.kind, DbfFault::kTooMuchAdded);
  while (table->field_count() < 255)
    ASSERT_NE(table->AddField("L" + std::to_string(table->field_count()), 'C', 0, 0), nullptr);
  EXPECT_EQ(table->AddField("M", 'C', 0, 0, &why), nullptr);
  EXPECT_EQ(why.kind, DbfFault::kTooManyFields);

  // Room for 235 fields and 19 columns more, and not for 236.
  std::string wide = ManyFields(225);
  EXPECT_NO_THROW(pktaus::schema_extend(folder.Write("b.dbf", wide).c_str()));
  wide = ManyFields(226);
  try {
    pktaus::schema_extend(folder.Write("b.dbf", wide).c_str());
    ADD_FAILURE() << "not refused";
  } catch (const CException& failure) {
    EXPECT_NE(failure.ErrorText().find("mehr als 255 Felder (Feld 256)"), std::string::npos) << failure.ErrorText();
  }
  EXPECT_TRUE(support::BytesOf(folder.File("b.dbf")) == wide);
}

}  // namespace
