#pragma once

#include <iosfwd>
#include <string>

#include "cppmicroservices/FrameworkExport.h"

namespace cppmicroservices {

/// The version of a bundle: major, minor and micro number and a qualifier, or undefined.
///
/// As text it is `1`, `1.2`, `1.2.3` or `1.2.3.qualifier`; a number that is left out is 0. A
/// qualifier has ASCII letters, digits, `_` and `-`.
class QUENLITH_CPPMICROSERVICES_EXPORT BundleVersion {
 public:
  /// Returns the version 0.0.0.
  static BundleVersion EmptyVersion() { return BundleVersion(0, 0, 0); }

  static BundleVersion UndefinedVersion() { return BundleVersion(std::string()); }

  BundleVersion(unsigned majorVersion, unsigned minorVersion, unsigned microVersion)
      : majorVersion(majorVersion), minorVersion(minorVersion), microVersion(microVersion) {}

  /// Like the form above. Throws `std::invalid_argument` when `qualifier` has other characters.
  BundleVersion(unsigned majorVersion, unsigned minorVersion, unsigned microVersion,
                std::string qualifier);

  /// Reads a version; an empty text gives the undefined one. Throws `std::invalid_argument` when
  /// `version` is not one, has spaces, or has a number that does not fit an `unsigned`.
  BundleVersion(const std::string& version);

  BundleVersion(const BundleVersion& other) = default;
  BundleVersion& operator=(const BundleVersion& other) = delete;
  ~BundleVersion() = default;

  /// Like the constructor, but spaces around the version are ignored, and a text with nothing else
  /// gives 0.0.0.
  static BundleVersion ParseVersion(const std::string& version);

  bool IsUndefined() const { return undefined; }

  /// The parts. Throw `std::logic_error` when the version is undefined.
  unsigned GetMajor() const;
  unsigned GetMinor() const;
  unsigned GetMicro() const;
  std::string GetQualifier() const;

  /// Returns all three numbers and the qualifier, if there is one; "undefined" when there are none.
  std::string ToString() const;

  /// Says whether all parts are equal, or both versions are undefined. Throws `std::logic_error` when
  /// only this one is undefined.
  bool operator==(const BundleVersion& other) const;

  /// Returns a negative number, 0 or a positive one when this version is less than, equal to or
  /// greater than `other`. Throws `std::logic_error` when one of them is undefined.
  int Compare(const BundleVersion& other) const;

 private:
  const BundleVersion& defined() const;

  unsigned majorVersion = 0;
  unsigned minorVersion = 0;
  unsigned microVersion = 0;
  std::string qualifier;
  bool undefined = false;
};

/// Writes `ToString()`.
QUENLITH_CPPMICROSERVICES_EXPORT std::ostream& operator<<(std::ostream& os,
                                                          const BundleVersion& version);

}  // namespace cppmicroservices
