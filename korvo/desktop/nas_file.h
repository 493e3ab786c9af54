// The members of a NAS file, whoever wrote it, and the points that they are about.
#pragma once

#include <QByteArray>
#include <QString>
#include <string>
#include <vector>

#include "korvo/desktop/point_set.h"

namespace korvo {

enum class NasKind { kInsert, kReplace, kDelete };
QString NameOf(NasKind kind);

struct NasMember {
  NasKind kind = NasKind::kInsert;
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
  /// False with the reason where the file cannot be opened. Of a file that is no XML from some place on, the members in
  /// front of it are there, and `trouble` says so.
  bool Read(const QString& path, QString* why);

  const QString& path() const { return path_; }
  const QString& trouble() const { return trouble_; }
  const std::vector<NasMember>& members() const { return members_; }
  /// Names of the classes, without prefix.
  const std::vector<QString>& types() const { return types_; }
  /// What stands in the file for a member.
  QString TextOf(const NasMember& member) const;

 private:
  class Parser;
  QString Decode(qsizetype begin, qsizetype size) const;

  QString path_;
  QString trouble_;
  QByteArray bytes_;
  bool utf8_ = true;  ///< otherwise Windows-1252
  std::vector<NasMember> members_;
  std::vector<QString> types_;
};

/// The point of each member, -1 for none: by the identifiers that its columns hold, by its number, or by the point of
/// the object that the member is a part of.
std::vector<int> PointsOf(const NasFile& file, const PointSet& points);

}  // namespace korvo
