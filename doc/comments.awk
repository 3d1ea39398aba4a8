# Doxygen's input filter: the headers' plain comments as documentation comments.
#
# A comment that stands before a declaration documents it, and its twin for constant objects where
# that follows; one behind a declaration documents that. The one at the top of a header documents
# the file and, when it begins with a class's name, the class. `// --- Name. Text` heads a group of
# members; private ones are hidden, and so is all behind `// --- Implementation`.

# A line of text, in which only what stands between backticks has a meaning to Doxygen; what stands
# in double quotes has none anyway.
function escape(text,    parts, count, i, result) {
  count = split(text, parts, "\"")
  for (i = 1; i <= count; ++i) {
    if (i % 2 == 1) {
      gsub(/[\\@#%*]/, "\\\\&", parts[i])
      gsub(/</, "\\&lt;", parts[i])
      gsub(/>/, "\\&gt;", parts[i])
    }
    text = i == 1 ? parts[i] : text "\"" parts[i]
  }
  count = split(text, parts, "`")
  result = parts[1]
  for (i = 2; i <= count; ++i) {
    if (i % 2 == 0) sub(/\.$/, ".\\ ", parts[i])  # ends no sentence
    result = result (i % 2 == 0 ? "<code>" : "</code>") parts[i]
  }
  sub(/^ REQUIRES: /, " @pre ", result)
  sub(/ *REQUIRES: /, "\n" indent "///\n" indent "/// @pre ", result)
  return result
}

# One line of a block, without its slashes. What is indented is code, unless it is a numbered item.
function doc_line(text) {
  if (text == "") in_list = 0
  if (text ~ /^   [0-9]+\. /) in_list = 1
  if (text ~ /^   / && !in_list) return "///    " text
  return "///" escape(in_list ? substr(text, 3) : text)
}

function print_block(   i) {
  in_list = 0
  for (i = 1; i <= block_size; ++i) print indent doc_line(block[i])
}

function print_plain(   i) {
  for (i = 1; i <= block_size; ++i) print indent "//" block[i]
}

function print_file(   name, i) {
  print "/// @file"
  print_block()
  name = block[1]
  if (match(name, /^ (GCL|LX|DRL)_[A-Za-z]+(<[A-Z,]+>)?: /) == 0) return
  block[1] = " " toupper(substr(name, RLENGTH + 1, 1)) substr(name, RLENGTH + 2)
  for (i = 1; i <= block_size; ++i) head[i] = block[i]
  head_size = block_size
  sub(/^ /, "", name)
  sub(/[<:].*/, "", name)
  head_class = name
}

# Puts the text at the top of the file before the block, where the line declares the class of which
# it speaks.
function add_head(line,    i) {
  sub(/ *(final|[:{;]).*/, "", line)
  sub(/.* /, "", line)
  if (head_size == 0 || line != head_class) return
  head[++head_size] = ""
  for (i = 1; i <= block_size; ++i) head[++head_size] = block[i]
  for (i = 1; i <= head_size; ++i) block[i] = head[i]
  block_size = head_size
  head_size = 0
}

function end_group() {
  if (in_group) print "  ///@}"
  in_group = 0
}

function print_group(   title) {
  end_group()
  title = block[1]
  sub(/^ --- /, "", title)
  sub(/[.:].*/, "", title)
  block[1] = substr(block[1], 6 + length(title) + 1)
  print indent "/// @name " title
  print_block()
  print indent "///@{"
  in_group = 1
}

# The function's name and parameters.
function signature(line) {
  return match(line, /[A-Za-z_]+\([^)]*\)/) ? substr(line, RSTART, RLENGTH) : ""
}

function is_declaration(line) {
  if (line ~ /^ *$/ || line ~ /^ *\}/ || line ~ /^ *[a-z]+:$/ || line ~ /^ *#(if|endif)/) return 0
  return line !~ /^ *(static_assert|friend |extern template )/
}

/^ *\/\// && !implementation {
  if (block_size == 0) {
    indent = $0
    sub(/\/.*/, "", indent)
    top = NR == 1
  }
  block[++block_size] = substr($0, length(indent) + 3)
  next
}

block_size > 0 && /^template </ && !/\{/ && !template_line {
  template_line = $0
  next
}

/^(class|struct) / && !implementation {
  if (block_size == 0) indent = top = ""
  add_head($0)
}

block_size > 0 {
  repeated = ""
  if (top) print_file()
  else if (block[1] ~ /^ --- Implementation/) {
    implementation = 1
    print "/// @cond IMPLEMENTATION"
  }
  else if (block[1] ~ /^ --- / && indent != "") print_group()
  else if (!is_declaration($0)) print_plain()
  else {
    print_block()
    repeated = indent != "" ? signature($0) : ""
    kept_size = block_size
    first = NR
  }
  block_size = 0
  if (template_line) print template_line
  template_line = ""
}

/^ *$/ { repeated = "" }
(/^ (public|protected|private):/ || /^\};/) && !implementation {
  end_group()
  if (hidden) print "/// @endcond"
  hidden = /private/
}

repeated != "" && NR != first && signature($0) == repeated {
  block_size = kept_size
  print_block()
  block_size = 0
}

/[;,0-9}]  \/\/ / && !/\/\/ NOLINT/ && !/^ *\}/ && !implementation { sub(/  \/\/ /, "  ///< ") }
{ sub(/  \/\/ NOLINT.*/, ""); print }
hidden && /^ private:/ { print "/// @cond PRIVATE" }
END { if (implementation) print "/// @endcond" }
