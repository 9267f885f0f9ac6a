#include "platform/file_traits.h"

#include <sys/xattr.h>
#include <unistd.h>

#include <string>
#include <string_view>

namespace platform {

namespace {

constexpr const char* kAccessList = "system.posix_acl_access";

void copyAttribute(int from, int to, const char* name) {
  const ssize_t size = fgetxattr(from, name, nullptr, 0);
  if (size < 0) return;
  std::string value(static_cast<std::size_t>(size), '\0');
  const ssize_t n = fgetxattr(from, name, value.data(), value.size());
  if (n >= 0) static_cast<void>(fsetxattr(to, name, value.data(), static_cast<std::size_t>(n), 0));
}

void copyUserAttributes(int from, int to) {
  const ssize_t size = flistxattr(from, nullptr, 0);
  if (size <= 0) return;
  std::string names(static_cast<std::size_t>(size), '\0');
  const ssize_t n = flistxattr(from, names.data(), names.size());
  for (std::size_t at = 0; n > 0 && at < static_cast<std::size_t>(n);) {
    const std::string_view name = names.data() + at;
    if (name.substr(0, 5) == "user.") copyAttribute(from, to, name.data());
    at += name.size() + 1;
  }
}

}  // namespace

void takeOverTraits(int from, const struct stat& old, int to) {
  mode_t mode = old.st_mode & 07777;
  const bool owner = fchown(to, old.st_uid, old.st_gid) == 0;
  const bool group = owner || fchown(to, static_cast<uid_t>(-1), old.st_gid) == 0;
  struct stat now;
  const bool sameOwner = fstat(to, &now) == 0 && now.st_uid == old.st_uid;
  if (!sameOwner) mode &= ~static_cast<mode_t>(S_ISUID);
  if (!group) {
    // Who was in the group is now among the others, and who is in the new group was too: both get
    // what both had.
    const mode_t both = (mode >> 3) & mode & 07;
    mode = (mode & (07000 | 0700) & ~static_cast<mode_t>(S_ISGID)) | (both << 3) | both;
  }
  copyUserAttributes(from, to);
  // The folder may have given the new file a list of its own.
  static_cast<void>(fremovexattr(to, kAccessList));
  if (group) copyAttribute(from, to, kAccessList);
  static_cast<void>(fchmod(to, mode));
}

}  // namespace platform
