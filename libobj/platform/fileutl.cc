#include "miroxplat/fileutl.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace {

constexpr int success = 0;
constexpr int failure = 1;
constexpr std::size_t longest_result = 1023;
constexpr char unknown_source[] = "-";  // as df prints it

struct free_deleter {
  void operator()(char* p) const { std::free(p); }
};
using c_text = std::unique_ptr<char, free_deleter>;  // from malloc

// A caller's buffer.
struct result_buffer {
  char* text;
  int size;

  bool is_usable() const { return text != nullptr && size > 0; }
  bool holds(std::string const& result) const {
    return result.size() <= longest_result && result.size() < static_cast<std::size_t>(size);
  }
};

// Stores each result in its buffer, or, if one does not fit or there are none, leaves all buffers
// empty. The results are complete before the first byte is written: a buffer may be the input.
int store(std::vector<std::string> const& results, std::vector<result_buffer> const& buffers) {
  bool fits = results.size() == buffers.size();
  for (std::size_t i = 0; fits && i < buffers.size(); ++i) {
    fits = buffers[i].is_usable() && buffers[i].holds(results[i]);
  }
  for (std::size_t i = 0; i < buffers.size(); ++i) {
    if (fits) {
      std::memcpy(buffers[i].text, results[i].c_str(), results[i].size() + 1);
    } else if (buffers[i].is_usable()) {
      buffers[i].text[0] = '\0';
    }
  }
  return fits ? success : failure;
}

bool is_empty(char const* path) { return path == nullptr || *path == '\0'; }

// Takes the next field, up to `separator` or the end, off the front of `text`.
std::string_view take_field(std::string_view& text, char separator) {
  std::string_view const field = text.substr(0, text.find(separator));
  text.remove_prefix(std::min(field.size() + 1, text.size()));
  return field;
}

// An absolute path without `.`, `..` and empty parts.
std::string resolve(std::string_view path) {
  std::string result;
  while (!path.empty()) {
    std::string_view const part = take_field(path, '/');
    if (part.empty() || part == ".") continue;
    if (part == "..") {
      result.erase(std::min(result.rfind('/'), result.size()));
    } else {
      result.append("/").append(part);
    }
  }
  return result.empty() ? "/" : result;
}

// The text up to and without the slashes at its end.
std::string_view without_end_slashes(std::string_view text) {
  return text.substr(0, text.find_last_not_of('/') + 1);
}

// The text before the last component, and that component.
std::vector<std::string> split_leaf(std::string_view path) {
  std::string_view const trimmed = without_end_slashes(path);
  if (trimmed.empty()) return {"/", "/"};
  std::size_t const slash = trimmed.rfind('/');
  if (slash == std::string_view::npos) return {".", std::string(trimmed)};
  std::string_view const dir = without_end_slashes(trimmed.substr(0, slash));
  return {std::string(dir.empty() ? "/" : dir), std::string(trimmed.substr(slash + 1))};
}

bool is_octal(char c) { return c >= '0' && c <= '7'; }

// Undoes the kernel's escapes: a backslash and three octal digits mean a byte.
std::string unescape(std::string_view field) {
  std::string result;
  while (!field.empty()) {
    bool const escaped = field[0] == '\\' && field.size() >= 4 && is_octal(field[1]) &&
                         is_octal(field[2]) && is_octal(field[3]);
    result +=
        escaped ? static_cast<char>((field[1] - '0') * 64 + (field[2] - '0') * 8 + (field[3] - '0'))
                : field[0];
    field.remove_prefix(escaped ? 4 : 1);
  }
  return result;
}

// One line of the kernel's list:
//   id parent major:minor root mount-point options [tag]... - type source super-options
struct mount_entry {
  std::string id, device, point, source;

  explicit mount_entry(std::string_view line) {
    id = take_field(line, ' ');
    take_field(line, ' ');
    device = take_field(line, ' ');
    take_field(line, ' ');
    point = unescape(take_field(line, ' '));
    while (!line.empty() && take_field(line, ' ') != "-") {
    }
    take_field(line, ' ');
    source = unescape(take_field(line, ' '));
  }

  bool is_above(std::string_view path) const {
    std::string_view const prefix = without_end_slashes(point);
    return !point.empty() && path.substr(0, prefix.size()) == prefix &&
           (path.size() == prefix.size() || path[prefix.size()] == '/');
  }
};

bool look_at(std::string const& path, struct statx* file) {
  return statx(AT_FDCWD, path.c_str(), 0, STATX_BASIC_STATS | STATX_MNT_ID, file) == 0;
}

// An emulator may say that it knows the mount, and leave the number 0.
bool knows_mount(struct statx const& file) {
  return (file.stx_mask & STATX_MNT_ID) != 0 && file.stx_mnt_id != 0;
}

bool is_on_same_mount(struct statx const& a, struct statx const& b) {
  if (knows_mount(a) && knows_mount(b)) return a.stx_mnt_id == b.stx_mnt_id;
  return a.stx_dev_major == b.stx_dev_major && a.stx_dev_minor == b.stx_dev_minor;
}

// The topmost folder above a file that is on the same mount.
std::string topmost_on_mount(std::string path, struct statx const& file) {
  for (;;) {
    std::string parent = split_leaf(path)[0];
    struct statx above = {};
    bool const goes_on = parent != path && look_at(parent, &above) && is_on_same_mount(above, file);
    if (!goes_on) return path;
    path = std::move(parent);
  }
}

// The mount that a file is on: the kernel's own word for it if it gives one, else the longest mount
// point above the file, where one of the file's device is preferred (others may be hidden below
// it). The last of equals covers those before. A process whose root was changed does not see the
// mount that its root is on, and perhaps no list: the source is unknown then.
mount_entry find_mount(std::string const& path, struct statx const& file) {
  std::string const device =
      std::to_string(file.stx_dev_major) + ':' + std::to_string(file.stx_dev_minor);
  std::string const id = knows_mount(file) ? std::to_string(file.stx_mnt_id) : "unknown";

  mount_entry best("");
  auto const rank = [&](mount_entry const& entry) {
    return std::tuple(entry.id == id, entry.device == device, entry.point.size());
  };
  std::ifstream mounts("/proc/self/mountinfo");
  for (std::string line; std::getline(mounts, line);) {
    mount_entry entry(line);
    if (entry.is_above(path) && rank(entry) >= rank(best)) best = std::move(entry);
  }
  bool const is_found = knows_mount(file) ? best.id == id : !best.point.empty();
  if (!is_found) {
    best.source = unknown_source;
    best.point = topmost_on_mount(path, file);
  }
  return best;
}

// Source, mount point and path below it.
int locate(char const* path, std::vector<std::string>* results) {
  c_text const real(realpath(path, nullptr));
  if (!real) return FILEUTL_NO_FILE;
  std::string const name = real.get();
  struct statx file = {};
  if (!look_at(name, &file)) return FILEUTL_NO_ATTRIBUTES;
  mount_entry const mount = find_mount(name, file);
  std::size_t const below = without_end_slashes(mount.point).size() + 1;
  *results = {mount.source, mount.point, name.substr(std::min(below, name.size()))};
  return success;
}

}  // namespace

int fileutl_abspn(char const* path, char* out, int size) {
  std::vector<std::string> results;
  if (!is_empty(path) && *path == '/') {
    results = {resolve(path)};
  } else if (!is_empty(path)) {
    c_text const current(getcwd(nullptr, 0));
    // The kernel shows a directory outside the process's root without the leading slash.
    if (current && *current == '/') results = {resolve(std::string(current.get()) + '/' + path)};
  }
  return store(results, {{out, size}});
}

int fileutl_strip_leaf(char const* path, int dir_size, char* dir, int leaf_size, char* leaf) {
  std::vector<std::string> results;
  if (!is_empty(path)) results = split_leaf(path);
  return store(results, {{dir, dir_size}, {leaf, leaf_size}});
}

int fileutl_path_locate(char const* path, char* source, int source_size, char* mount,
                        int mount_size, char* below, int below_size) {
  std::vector<std::string> results;
  int code = FILEUTL_NO_NAME;
  if (!is_empty(path)) code = locate(path, &results);
  int const stored =
      store(results, {{source, source_size}, {mount, mount_size}, {below, below_size}});
  return code == success && stored != success ? int{FILEUTL_NO_ROOM} : code;
}
