# Doxygen's input filter for Markdown. A code span that holds a single quote is put between doubled
# backticks, as Doxygen would end it at the quote; a percent sign in a span is doubled.
/^```/ { fenced = !fenced }
fenced { print; next }
{
  count = split($0, parts, "`")
  line = parts[1]
  for (i = 2; i <= count; ++i) {
    if (i % 2 == 0) {
      mark = index(parts[i], "'") ? "``" : "`"
      gsub(/%/, "%%", parts[i])
    }
    line = line mark parts[i]
  }
  print line
}
