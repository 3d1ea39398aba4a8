// The one place that reads the environment.
#ifndef MIROXGCL_GCL_ENVIRONMENT_H
#define MIROXGCL_GCL_ENVIRONMENT_H

// The value of a variable; null when it is not set, and in a program that runs with more rights
// than its caller, who could otherwise have it write files or text of his choice. The text belongs
// to the environment.
char const* gcl_environment(char const* name) noexcept;

// Whether a variable has a value that is not empty.
bool gcl_environment_is_set(char const* name) noexcept;

#endif
