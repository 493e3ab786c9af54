#include "store/schema.h"

#include <memory>
#include <string>

#include "base/failure.h"
#include "base/text.h"
#include "platform/system.h"
#include "store/dbf_table.h"

namespace pktaus {
namespace {

using namespace text::literals;

struct Column {
  const char* name;
  char type;
  int width;
  int decimals;
};

// The host's own columns, added together or not at all.
constexpr Column kBaseColumns[] = {
    {"PT_NO", 'C', 15, 0}, {"EAST", 'N', 14, 4}, {"NORTH", 'N', 14, 4},   {"ELEV", 'N', 10, 5},
    {"CODE", 'C', 8, 0},   {"CLASS", 'C', 1, 0}, {"CONNECT", 'C', 15, 0}, {"STATUS", 'C', 1, 0},
    {"REM", 'C', 10, 0},   {"DRAW", 'C', 1, 0},  {"QUALITY", 'C', 1, 0},
};

// The attributes of a point, each added on its own.
constexpr Column kAttributeColumns[] = {
    {"NE_OA", 'N', 2, 0},     {"NE_ANTRAGN", 'C', 40, 0}, {"NE_AUFTRAG", 'C', 40, 0}, {"NE_PKN", 'C', 20, 0},
    {"NE_PO", 'N', 2, 0},     {"NE_ABM", 'N', 8, 0},      {"NE_BZA", 'N', 8, 0},      {"NE_ART", 'N', 8, 0},
    {"NE_ZST", 'N', 8, 0},    {"NE_KST", 'N', 8, 0},      {"NE_DAT", 'N', 8, 0},      {"NE_HER", 'N', 8, 0},
    {"NE_GST", 'N', 8, 0},    {"NE_VTW", 'N', 8, 0},      {"NE_LZV", 'N', 8, 0},      {"NE_HIN", 'N', 8, 0},
    {"NE_OBGID", 'C', 20, 0}, {"NE_AKTION", 'N', 8, 0},   {"NE_WEPO", 'C', 80, 0},
};

std::string Reason(const DbfFault& fault) {
  switch (fault.kind) {
    case DbfFault::kNotRead:
      return "Sie konnte nicht bis zum Ende gelesen werden ("_ansi + platform::SystemErrorText(fault.system_error) +
             ")";
    case DbfFault::kTooManyRecords:
      return "Sie hat zu viele Datensätze"_ansi;
    case DbfFault::kHeaderCut:
      return "Die Datei endet im Kopf"_ansi;
    case DbfFault::kHeaderLength:
      return "Die Länge des Kopfes passt nicht zu den Feldbeschreibungen"_ansi;
    case DbfFault::kNoTerminator:
      return "Hinter den Feldbeschreibungen fehlt das Endezeichen"_ansi;
    case DbfFault::kEncrypted:
      return "Die Datensätze sind verschlüsselt"_ansi;
    case DbfFault::kTooManyFields:
      return "Sie hat mit den Spalten, die zu ergänzen sind, mehr als 255 Felder"_ansi;
    case DbfFault::kTooMuchAdded:
      return "Die Spalten, die zu ergänzen sind, haben mehr als 400 Zeichen"_ansi;
    case DbfFault::kFieldName:
      return "Für ein Feld ist kein eindeutiger Name mehr frei"_ansi;
    case DbfFault::kRecordLength:
      return "Die Satzlänge ist nicht die Summe der Feldbreiten"_ansi;
    case DbfFault::kRecordCut:
      return "Die Datei endet mitten in einem Datensatz"_ansi;
    case DbfFault::kRecordFlag:
      return "Dort steht kein Datensatz, obwohl der Kopf weitere zählt"_ansi;
    default:
      return "Unbekannter Fehler"_ansi;
  }
}

std::string Place(const DbfFault& fault) {
  // A column that finds no room has no byte in the file.
  if (fault.offset == 0 && fault.field != 0) return "Feld " + std::to_string(fault.field);
  std::string place = "Stelle " + std::to_string(fault.offset);
  if (fault.record != 0) place += ", Datensatz " + std::to_string(fault.record);
  if (fault.field != 0) place += ", Feld " + std::to_string(fault.field);
  return place;
}

const char* Verdict(DbfFault::Kind kind) {
  switch (kind) {
    case DbfFault::kNotRead:
      return "kann nicht gelesen werden"_ansi;
    case DbfFault::kTooManyRecords:
    case DbfFault::kTooManyFields:
    case DbfFault::kTooMuchAdded:
      return "kann nicht ergänzt werden"_ansi;
    default:
      return "ist keine regelmäßige dBase-Datei"_ansi;
  }
}

// What wrote the file, where its first byte or the fault itself tells, and what to do. Other dialects share their first
// byte with the dBase III and IV that would be taken.
std::string Advice(const DbfFault& fault) {
  const char* what = nullptr;
  switch (fault.version) {
    case 0x02:
      what = "eine Tabelle von dBase II"_ansi;
      break;
    case 0x04:
    case 0x8C:
      what = "eine Tabelle von dBase 7"_ansi;
      break;
    case 0x30:
    case 0x31:
    case 0x32:
      what = "eine Tabelle von Visual FoxPro"_ansi;
      break;
    default:
      if (fault.kind != DbfFault::kNoTerminator && fault.kind != DbfFault::kHeaderLength) return {};
  }
  const std::string is = what == nullptr ? "" : std::string(" Es ist ") + what + ".";
  return is + " Speichern Sie die Tabelle mit dem Programm, aus dem sie kommt, als dBase III oder IV."_ansi;
}

std::string FaultText(const char* path, const DbfFault& fault) {
  return std::string("Die Punkttabelle '") + path + "' " + Verdict(fault.kind) + ": " + Reason(fault) + " (" +
         Place(fault) + "). Die Datei wurde nicht verändert."_ansi + Advice(fault);
}

[[noreturn]] void Raise(const char* path, const DbfFault& fault) {
  if (fault.kind != DbfFault::kNotOpened) throw CException(FaultText(path, fault));
  platform::SetLastSystemError(fault.system_error);
  throw TableNotOpened{fault.system_error};
}

}  // namespace

int schema_extend(const char* path) {
  DbfFault fault;
  const std::unique_ptr<CDbfTable> table = CDbfTable::Load(path, &fault);
  if (!table) Raise(path, fault);
  const auto add = [&](const Column& column) {
    if (table->AddField(column.name, column.type, column.width, column.decimals, &fault) == nullptr) Raise(path, fault);
  };
  if (table->FindField("PT_NO") == nullptr) {
    for (const Column& column : kBaseColumns) add(column);
  }
  for (const Column& column : kAttributeColumns) {
    if (table->FindField(column.name) == nullptr) add(column);
  }
  return table->Save(path);
}

}  // namespace pktaus
