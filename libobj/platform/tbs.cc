#include "miroxplat/tbs.h"

#include <nl_types.h>

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>

#include "miroxplat/imsg.h"

namespace {

bool is_set(char const* variable) {
  char const* const value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

// How catopen finds the user's language: in the process's locale, or in LANG when the process has
// never set one (its locale is then "C", whatever the user speaks).
int language_source() {
  char const* const locale = std::setlocale(LC_MESSAGES, nullptr);
  bool const has_locale = locale != nullptr && std::strcmp(locale, "C") != 0;
  return has_locale || is_set("LC_ALL") || is_set("LC_MESSAGES") ? NL_CAT_LOCALE : 0;
}

// The first look at a catalog. One thread at a time: setlocale need not be safe beside itself, even
// where it only asks.
nl_catd open_catalog(char const* name) {
  static std::mutex mutex;
  std::lock_guard const lock(mutex);
  return catopen(name, language_source());
}

// An open message catalog, or none. The texts that it hands out die with it.
class catalog {
 public:
  explicit catalog(char const* name) : m_catalog(name != nullptr ? open_catalog(name) : none()) {}
  ~catalog() {
    if (m_catalog != none()) catclose(m_catalog);
  }
  catalog(catalog const&) = delete;
  catalog& operator=(catalog const&) = delete;

  char const* text(int set, int number, char const* default_text) const {
    return m_catalog != none() ? catgets(m_catalog, set, number, default_text) : default_text;
  }

 private:
  // What catopen returns for none.
  static nl_catd none() {
    return reinterpret_cast<nl_catd>(-1);  // NOLINT(performance-no-int-to-ptr)
  }

  nl_catd m_catalog;
};

char const* or_else(char const* text, char const* substitute) {
  return text != nullptr ? text : substitute;
}

// Why the entry has no text, and what to mend; empty when it has one.
std::string missing_text(tbs_msg_table_t const* table, int index) {
  std::string const entry = "Internal error: message " + std::to_string(index);
  if (table == nullptr) return entry + " of no message table: give this call a table.\n";
  bool const exists = index >= 0 && index < table->count;
  if (exists && table->texts != nullptr && table->texts[index] != nullptr) return {};
  return entry + " is not in the table of \"" + or_else(table->catalog, "(no catalog)") +
         "\", set " + std::to_string(table->set) + ", " +
         (exists ? "whose text for it is null: add the text.\n"
                 : "which counts " + std::to_string(table->count) +
                       " from 0: correct this call's index.\n");
}

void print(char const* text, char const* component, char const* file, int line) {
  std::size_t const length = std::strlen(text);
  bool const ends_line = length != 0 && text[length - 1] == '\n';
  imsg_print(IMSG_ERROR, "%s%s%s: %s:%d\n", -1, text, ends_line ? "" : "\n", component,
             or_else(file, "(unknown file)"), line);
}

}  // namespace

void tbs_log_int_error(char const* component, tbs_msg_table_t const* table, int index,
                       char const* file, int line, int) {
  if (component == nullptr && table != nullptr) component = table->component;
  component = or_else(component, "(unknown component)");

  std::string const missing = missing_text(table, index);
  if (!missing.empty()) {
    print(missing.c_str(), component, file, line);
    return;
  }
  char const* const default_text = table->texts[index];
  catalog const translations(table->numbers != nullptr ? table->catalog : nullptr);
  int const number = table->numbers != nullptr ? table->numbers[index] : 0;
  print(translations.text(table->set, number, default_text), component, file, line);
}
