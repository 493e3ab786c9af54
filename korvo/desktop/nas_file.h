// The objects of a NAS file, whoever wrote it, and the points that they are about.
#pragma once

#include <QByteArray>
#include <QString>
#include <string>
#include <vector>

#include "korvo/desktop/point_set.h"

namespace korvo {

/// What a transaction does with an object; kStock: the file only tells of it.
enum class NasKind { kInsert, kReplace, kUpdate, kDelete, kStock };
QString NameOf(NasKind kind);

/// One object.
struct NasMember {
  NasKind kind = NasKind::kStock;
  int type = 0;       ///< in NasFile::types
  QString id;         ///< of the object, without the time that a key of a deletion ends in
  QString owner;      ///< id of the object that this one is a part of; empty for none
  QString point_key;  ///< point identifier
  qsizetype begin = 0;
  qsizetype size = 0;
};

/// Prefixes of elements count as part of their names, so that a file without declarations can be read too.
class NasFile {
 public:
  /// False with the reason where the file cannot be opened. Of a file that is no XML from some place on, or that holds
  /// more members than kMostMembers or an element with more attributes than kMostAttributes, those in front of it are
  /// there, and `trouble` says so.
  bool Read(const QString& path, QString* why);

  static constexpr std::size_t kMostMembers = 2'000'000;
  /// Of one element. The toolkit's reader compares each attribute with all in front of it.
  static constexpr int kMostAttributes = 1000;

  const QString& path() const { return path_; }
  const QString& trouble() const { return trouble_; }
  const std::vector<NasMember>& members() const { return members_; }
  /// Names of the classes, without prefix.
  const std::vector<QString>& types() const { return types_; }
  /// What stands in the file for a member: the object, or the whole operation where only that says what it is about.
  QString TextOf(const NasMember& member) const;

 private:
  class Parser;
  QString Decode(qsizetype begin, qsizetype size) const;

  QString path_;
  QString trouble_;
  QByteArray bytes_;  ///< of UTF-16: in UTF-8
  bool utf8_ = true;  ///< otherwise Windows-1252
  std::vector<NasMember> members_;
  std::vector<QString> types_;
};

/// The point of each member, -1 for none: by the identifiers that its columns hold, by its number, or by the point of
/// the object that the member is a part of.
std::vector<int> PointsOf(const NasFile& file, const PointSet& points);

}  // namespace korvo
