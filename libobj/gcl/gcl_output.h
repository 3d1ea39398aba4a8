// Diagnostic output: one text, written whole, whatever the stream is set to or has come to.
#ifndef MIROXGCL_GCL_OUTPUT_H
#define MIROXGCL_GCL_OUTPUT_H

#include <iosfwd>
#include <string_view>

// Writes `text` through the stream's buffer in one call, and flushes where the stream is set to
// flush after each output. Nothing is written to a stream that is not good. Never throws, and
// leaves the stream's state, flags and width as they are: what cannot be written is lost.
void gcl_write_diagnostic(std::ostream& stream, std::string_view text) noexcept;

#endif
