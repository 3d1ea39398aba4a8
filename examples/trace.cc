// A calculator that shows how it works: numbers, + - * /, a sign, parentheses.
//
//   trace [EXPRESSION ...]     Without one, each line of standard input is an expression.
//
// Exit code: 0 when every expression has a value, 1 otherwise. What it traces is chosen outside:
//
//   MIROX_GCL_DEBUG=5 trace '2*(3+4)'          the parser, coarsely
//   MIROX_GCL_DEBUG=0-9.2 trace '2*(3+4)'      all it has
#include <algorithm>
#include <charconv>
#include <cstdio>
#include <iostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "miroxgcl/gcl_ctrace.h"
#include "miroxgcl/gcl_status.h"

namespace {

// What a status's code says.
enum Failure { syntax_error = 1, division_by_zero = 2 };

// A number, or a chain that is computed from left to right, beginning with 0.
struct Expression {
  double number = 0;
  std::vector<std::pair<char, Expression>> chain;  // an operation and its operand
};

// Makes an expression of a text, by recursive descent. The status tells whether it could.
//
//   sum     = product {("+" | "-") product}
//   product = factor {("*" | "/") factor}
//   factor  = "-" factor | "(" sum ")" | number
class Parser {
 public:
  explicit Parser(std::string_view text) : m_text(text) {}

  Expression run(GCL_Status& status) {
    GCL_CTRACE("Parser", "run", GCL_Debug::parsing, GCL_Debug::coarse);
    status.set_ok();
    Expression result = sum(status);
    if (status.is_ok() && !is_at_end()) fail(status, "an operator is expected");
    return result;
  }

 private:
  static constexpr int deepest = 200;  // nested factors, so that no text exhausts the stack

  Expression sum(GCL_Status& status) {
    GCL_CTRACE("Parser", "sum", GCL_Debug::parsing, GCL_Debug::fine);
    return chain(status, "+-", &Parser::product);
  }

  Expression product(GCL_Status& status) {
    GCL_CTRACE("Parser", "product", GCL_Debug::parsing, GCL_Debug::fine);
    return chain(status, "*/", &Parser::factor);
  }

  // One operand is itself; several, joined by one of `operators`, are a chain.
  Expression chain(GCL_Status& status, std::string_view operators,
                   Expression (Parser::*operand)(GCL_Status&)) {
    Expression first = (this->*operand)(status);
    if (!status.is_ok() || operators.find(peek()) == operators.npos) return first;
    Expression result;
    result.chain.emplace_back('+', std::move(first));
    while (status.is_ok() && operators.find(peek()) != operators.npos) {
      char const operation = take();
      result.chain.emplace_back(operation, (this->*operand)(status));
    }
    return result;
  }

  Expression factor(GCL_Status& status) {
    GCL_CTRACE("Parser", "factor", GCL_Debug::parsing, GCL_Debug::fine);
    GCL_CTRACE_OUT("rest=" << m_text.substr(m_position));
    if (++m_depth > deepest) return fail(status, "this is nested too deeply");
    Expression result;
    if (peek() == '-') {
      char const operation = take();
      result.chain.emplace_back(operation, factor(status));
    } else if (peek() == '(') {
      take();
      result = sum(status);
      if (status.is_ok() && peek() != ')') return fail(status, "\")\" is expected");
      take();
    } else {
      result.number = number(status);
    }
    --m_depth;
    return result;
  }

  double number(GCL_Status& status) {
    double result = 0;
    if (std::string_view("0123456789.").find(peek()) == std::string_view::npos) {
      fail(status, "a number, \"-\" or \"(\" is expected");
      return result;
    }
    char const* const begin = m_text.data() + m_position;
    auto const [end, error] = std::from_chars(begin, m_text.data() + m_text.size(), result);
    if (error != std::errc()) fail(status, "this is no number, or too large or small a one");
    m_position += static_cast<std::size_t>(end - begin);
    return result;
  }

  bool is_at_end() {
    m_position = std::min(m_text.find_first_not_of(" \t", m_position), m_text.size());
    return m_position == m_text.size();
  }

  // The next character that is no blank; NUL at the end.
  char peek() { return is_at_end() ? '\0' : m_text[m_position]; }

  // Steps past it, too.
  char take() {
    char const result = peek();
    if (!is_at_end()) ++m_position;
    return result;
  }

  Expression fail(GCL_Status& status, char const* reason) {
    std::string const message = "column " + std::to_string(m_position + 1) + ": " + reason + "\n";
    status.set(syntax_error);
    status.add_message(message.c_str());
    return {};
  }

  std::string_view m_text;
  std::size_t m_position = 0;
  int m_depth = 0;
};

double apply(GCL_Status& status, char operation, double left, double right) {
  switch (operation) {
    case '+':
      return left + right;
    case '-':
      return left - right;
    case '*':
      return left * right;
    default:
      if (right != 0) return left / right;
      status.set(division_by_zero);
      status.add_message("division by zero\n");
      return 0;
  }
}

// The value; of no meaning when the status says that there is none.
double evaluate(GCL_Status& status, Expression const& expression) {
  GCL_CTRACE("Expression", "evaluate", GCL_Debug::evaluation, GCL_Debug::coarse);
  double result = expression.number;
  for (auto const& [operation, operand] : expression.chain) {
    double const right = evaluate(status, operand);
    if (!status.is_ok()) return 0;
    result = apply(status, operation, result, right);
  }
  GCL_CTRACE_OUT("value=" << result);
  return result;
}

// On failure, the status holds the reason and, on top of it, where it arose.
double calculate(GCL_Status& status, std::string const& text) {
  Expression const expression = Parser(text).run(status);
  double const result = status.is_ok() ? evaluate(status, expression) : 0;
  if (!status.is_ok()) status.add_message(("in: " + text + "\n").c_str());
  return result;
}

bool show(std::string const& text) {
  GCL_Status status;
  double const value = calculate(status, text);
  if (status.is_ok()) {
    std::printf("%.15g\n", value);
  } else {
    std::printf("failed with %d: %s", status.value(), status.error_message().c_str());
  }
  return status.is_ok();
}

}  // namespace

int main(int argc, char** argv) {
  bool all_shown = true;
  for (int i = 1; i < argc; ++i) all_shown = show(argv[i]) && all_shown;
  for (std::string line; argc == 1 && std::getline(std::cin, line);) {
    all_shown = show(line) && all_shown;
  }
  return all_shown ? 0 : 1;
}
