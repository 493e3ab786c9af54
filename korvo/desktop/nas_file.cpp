#include "korvo/desktop/nas_file.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>
#include <QStringDecoder>
#include <QXmlStreamReader>
#include <algorithm>

#include "korvo/desktop/text.h"

namespace korvo {

namespace {

constexpr qsizetype kChunk = 1024 * 1024;

QStringView WithoutPrefix(QStringView name) { return name.mid(name.indexOf(QLatin1Char(':')) + 1); }

/// "ABC20160302T090503Z" is the object ABC and the moment at which it came to be.
QString WithoutMoment(const QString& key) {
  static const QRegularExpression moment(QStringLiteral("\\d{8}T\\d{6}Z$"));
  return QString(key).remove(moment);
}

/// An element around objects, or the operation on one.
struct Frame {
  QLatin1String name;
  NasKind kind;
};
constexpr Frame kFrames[] = {
    {QLatin1String("Insert"), NasKind::kInsert},        {QLatin1String("Replace"), NasKind::kReplace},
    {QLatin1String("Update"), NasKind::kUpdate},        {QLatin1String("Delete"), NasKind::kDelete},
    {QLatin1String("member"), NasKind::kStock},         {QLatin1String("featureMember"), NasKind::kStock},
    {QLatin1String("featureMembers"), NasKind::kStock},
};

const Frame* FrameOf(QStringView name) {
  const auto* found =
      std::find_if(std::begin(kFrames), std::end(kFrames), [&](const Frame& f) { return f.name == name; });
  return found == std::end(kFrames) ? nullptr : found;
}

/// The start of the first tag with more attributes than are read; the size of the text where there is none.
std::size_t FirstOverlongTag(std::string_view text) {
  const auto behind = [&text](std::string_view mark, std::size_t from) {
    const std::size_t at = text.find(mark, from);
    return at == std::string_view::npos ? text.size() : at + mark.size();
  };
  for (std::size_t at = text.find('<'); at < text.size(); at = text.find('<', at)) {
    const std::size_t start = at;
    const std::string_view tag = text.substr(at);
    if (tag.starts_with("<!--")) {
      at = behind("-->", at);
    } else if (tag.starts_with("<![CDATA[")) {
      at = behind("]]>", at);
    } else {
      int values = 0;
      for (at = text.find_first_of("<>\"'", at + 1); at < text.size(); at = text.find_first_of("<>\"'", at)) {
        if (text[at] == '<' || text[at] == '>') break;
        at = behind(text.substr(at, 1), at + 1);
        if (++values > NasFile::kMostAttributes) return start;
      }
    }
  }
  return text.size();
}

}  // namespace

QString NameOf(NasKind kind) {
  switch (kind) {
    case NasKind::kInsert:
      return QStringLiteral("Einfügen");
    case NasKind::kReplace:
      return QStringLiteral("Ersetzen");
    case NasKind::kUpdate:
      return QStringLiteral("Ändern");
    case NasKind::kDelete:
      return QStringLiteral("Löschen");
    case NasKind::kStock:
      break;
  }
  return QStringLiteral("Bestand");
}

/// Reads piece by piece, and keeps count of the bytes behind the characters that the toolkit's reader counts.
class NasFile::Parser {
 public:
  explicit Parser(NasFile& file)
      : file_(file),
        end_(static_cast<qsizetype>(
            FirstOverlongTag({file.bytes_.constData(), static_cast<std::size_t>(file.bytes_.size())}))) {
    reader_.setNamespaceProcessing(false);
  }

  /// False where the bytes are no UTF-8 after all.
  bool Run() {
    if (file_.bytes_.startsWith("\xEF\xBB\xBF")) read_ = at_byte_ = 3;
    while (true) {
      if (reader_.readNext() != QXmlStreamReader::Invalid) {
        if (reader_.tokenType() == QXmlStreamReader::EndDocument) return true;
        See();
        MoveTo(reader_.characterOffset());
        if (reader_.tokenType() == QXmlStreamReader::EndElement && !Leave()) return true;
      } else if (reader_.error() == QXmlStreamReader::PrematureEndOfDocumentError && read_ < end_) {
        if (!Feed()) return false;
      } else if (reader_.error() == QXmlStreamReader::PrematureEndOfDocumentError && end_ < file_.bytes_.size()) {
        file_.trouble_ =
            QStringLiteral("Ab Zeile %1 wird die Datei nicht mehr gezeigt: Ein Element hat mehr als %2 Attribute.")
                .arg(reader_.lineNumber())
                .arg(kMostAttributes);
        return true;
      } else {
        file_.trouble_ = QStringLiteral("Ab Zeile %1 ist die Datei kein XML mehr: %2")
                             .arg(reader_.lineNumber())
                             .arg(reader_.errorString());
        return true;
      }
    }
  }

 private:
  bool Feed() {
    const qsizetype size = std::min(kChunk, end_ - read_);
    const QByteArrayView piece(file_.bytes_.constData() + read_, size);
    read_ += size;
    if (!file_.utf8_) {
      reader_.addData(FromAnsi({piece.data(), static_cast<std::size_t>(piece.size())}));
      return true;
    }
    const QString text = decoder_.decode(piece);
    reader_.addData(text);
    return !decoder_.hasError();
  }

  /// The byte behind the token that was read last.
  void MoveTo(qint64 character) {
    if (!file_.utf8_) {
      at_byte_ += character - at_character_;
      at_character_ = character;
      return;
    }
    const auto* bytes = reinterpret_cast<const unsigned char*>(file_.bytes_.constData());
    const qsizetype size = file_.bytes_.size();
    while (at_character_ < character && at_byte_ < size) {
      at_character_ += bytes[at_byte_] >= 0xF0 ? 2 : 1;
      do {
        ++at_byte_;
      } while (at_byte_ < size && (bytes[at_byte_] & 0xC0U) == 0x80U);
    }
  }

  void See() {
    if (reader_.isStartElement()) {
      Enter();
    } else if (reader_.isCharacters() && reading_key_) {
      member_.point_key += reader_.text();
    }
  }

  void Enter() {
    ++depth_;
    const QStringView name = WithoutPrefix(reader_.qualifiedName());
    if (frame_depth_ == 0) {
      const Frame* frame = FrameOf(name);
      if (frame == nullptr) return;
      frame_depth_ = depth_;
      kind_ = frame->kind;
      if (kind_ == NasKind::kInsert || kind_ == NasKind::kStock) return;
      Begin();
      type_ = WithoutPrefix(reader_.attributes().value(QStringLiteral("typeName"))).toString();
      return;
    }
    const QXmlStreamAttributes attributes = reader_.attributes();
    if (member_depth_ == 0) Begin();
    if (depth_ == frame_depth_ + 1 && type_.isEmpty() && name != QLatin1String("Filter")) {
      type_ = name.toString();
      member_.id = attributes.value(QStringLiteral("gml:id")).toString();
    } else if (depth_ == frame_depth_ + 2 && name == QLatin1String("istTeilVon")) {
      const QStringView reference = attributes.value(QStringLiteral("xlink:href"));
      member_.owner = reference.mid(reference.lastIndexOf(QLatin1Char(':')) + 1).toString();
    } else if (depth_ == frame_depth_ + 2 && name == QLatin1String("punktkennung")) {
      reading_key_ = true;
    } else if (name == QLatin1String("ResourceId") && member_.id.isEmpty()) {
      member_.id = WithoutMoment(attributes.value(QStringLiteral("rid")).toString());
    }
  }

  void Begin() {
    member_ = {};
    member_.kind = kind_;
    type_.clear();
    member_depth_ = depth_;
    // Behind text the reader stands one character further, since it had to see where the text ends.
    const bool seen = at_byte_ > 0 && file_.bytes_[at_byte_ - 1] == '<';
    member_.begin = seen ? at_byte_ - 1 : at_byte_;
  }

  /// False where there are too many members.
  bool Leave() {
    reading_key_ = false;
    if (depth_ == member_depth_) {
      if (file_.members_.size() == kMostMembers) {
        file_.trouble_ =
            QStringLiteral("Ab Zeile %1 wird die Datei nicht mehr gezeigt: Sie enthält mehr als %2 Objekte.")
                .arg(reader_.lineNumber())
                .arg(kMostMembers);
        return false;
      }
      member_.type = TypeNumber();
      member_.size = at_byte_ - member_.begin;
      file_.members_.push_back(member_);
      member_depth_ = 0;
    }
    if (depth_ == frame_depth_) frame_depth_ = 0;
    --depth_;
    return true;
  }

  int TypeNumber() {
    const auto next = static_cast<int>(file_.types_.size());
    const int number = numbers_.value(type_, next);
    if (number == next) {
      numbers_.insert(type_, number);
      file_.types_.push_back(type_);
    }
    return number;
  }

  NasFile& file_;
  const qsizetype end_;  ///< what is read of it
  QXmlStreamReader reader_;
  QStringDecoder decoder_{QStringDecoder::Utf8};
  qsizetype read_ = 0;
  qint64 at_character_ = 0;
  qsizetype at_byte_ = 0;

  int depth_ = 0;
  int frame_depth_ = 0;   ///< 0 outside of frames
  int member_depth_ = 0;  ///< 0 outside of members; that of the frame where the member is the whole operation
  NasKind kind_ = NasKind::kStock;
  NasMember member_;
  QString type_;
  QHash<QString, int> numbers_;  ///< of the types
  bool reading_key_ = false;
};

bool NasFile::Read(const QString& path, QString* why) {
  *this = NasFile();
  path_ = path;
  // What only has a name like a file may keep its reader waiting for ever.
  const QFileInfo facts(path);
  if (facts.exists() && !facts.isFile()) {
    *why = QStringLiteral("Es ist keine Datei.");
    return false;
  }
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) {
    *why = file.errorString();
    return false;
  }
  bytes_ = file.readAll();
  if (file.error() != QFileDevice::NoError) {
    *why = file.errorString();
    return false;
  }
  // The bytes of members are counted in one of two encodings; others come as the first.
  const auto encoding = QStringDecoder::encodingForData(bytes_, u'<');
  if (encoding && *encoding != QStringDecoder::Utf8) bytes_ = QString(QStringDecoder(*encoding)(bytes_)).toUtf8();
  if (Parser(*this).Run()) return true;
  utf8_ = false;
  members_.clear();
  types_.clear();
  trouble_.clear();
  return Parser(*this).Run();
}

QString NasFile::Decode(qsizetype begin, qsizetype size) const {
  const std::string_view bytes(bytes_.constData() + begin, static_cast<std::size_t>(size));
  return utf8_ ? QString::fromUtf8(bytes.data(), size) : FromAnsi(bytes);
}

QString NasFile::TextOf(const NasMember& member) const {
  // The lines of the file are indented as deep as the member stands; as a text of its own it begins at the margin.
  qsizetype line = member.begin;
  while (line > 0 && (bytes_[line - 1] == '\t' || bytes_[line - 1] == ' ')) --line;
  const QString margin = QLatin1Char('\n') + QString::fromLatin1(bytes_.mid(line, member.begin - line));
  return Decode(member.begin, member.size)
      .replace(QStringLiteral("\r\n"), QStringLiteral("\n"))
      .replace(margin, QStringLiteral("\n"))
      .replace(QLatin1Char('\t'), QStringLiteral("  "));
}

std::vector<int> PointsOf(const NasFile& file, const PointSet& points) {
  using Index = QHash<QString, int>;
  const auto index = [&points](int column) {
    Index found;
    if (column < 0) return found;
    for (int i = points.count() - 1; i >= 0; --i) {
      const QString value = FromAnsi(points.Field(i, column)).trimmed();
      if (!value.isEmpty()) found.insert(value, i);
    }
    return found;
  };
  const Index by_key = index(points.FindColumn("NE_PKN"));
  const Index by_object = index(points.FindColumn("NE_OBGID"));
  Index by_position = index(points.FindColumn("GMLID"));
  const Index by_number = index(points.number_column());
  // Further positions of a point: pairs of class and identifier, a bar behind each.
  const Index further = index(points.FindColumn("NE_WEPO"));
  for (auto at = further.begin(); at != further.end(); ++at) {
    const QStringList parts = at.key().split(QLatin1Char('|'));
    for (qsizetype i = 1; i < parts.size(); i += 2) by_position.insert(parts[i], at.value());
  }

  std::vector<int> found(file.members().size(), -1);
  Index by_owner;
  for (std::size_t i = 0; i < found.size(); ++i) {
    const NasMember& member = file.members()[i];
    const QString key = member.point_key.trimmed();
    using Key = std::pair<const Index*, const QString*>;
    for (const auto& [map, value] :
         {Key(&by_key, &key), Key(&by_object, &member.id), Key(&by_position, &member.id), Key(&by_number, &key)}) {
      if (found[i] < 0 && !value->isEmpty()) found[i] = map->value(*value, -1);
    }
    if (found[i] >= 0 && !member.id.isEmpty()) by_owner.insert(member.id, found[i]);
  }
  for (std::size_t i = 0; i < found.size(); ++i) {
    const NasMember& member = file.members()[i];
    if (found[i] < 0 && !member.owner.isEmpty())
      found[i] = by_owner.value(member.owner, by_object.value(member.owner, -1));
  }
  return found;
}

}  // namespace korvo
