#include "book_postgresql/postgres_sql.h"

#include <algorithm>
#include <cctype>

namespace kivo::book_postgresql {
namespace {

bool isWordLetter(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }

// Reads a statement piece by piece.
class Rewriting {
 public:
  explicit Rewriting(std::string_view sql) : left_(sql) {}

  std::string result() {
    while (!left_.empty()) {
      if (left_.front() == '\'' || left_.front() == '"') {
        made_ += taken(quotedLength());
      } else if (left_.front() == '?') {
        rewriteParameter();
      } else if (isWordLetter(left_.front())) {
        rewriteWord();
      } else if (isHint()) {
        left_.remove_prefix(1);
      } else {
        made_ += taken(1);
      }
    }
    return std::move(made_);
  }

 private:
  std::string_view taken(std::size_t length) {
    const std::string_view piece = left_.substr(0, length);
    left_.remove_prefix(piece.size());
    return piece;
  }

  // A doubled quote within a text begins the next one, which does no harm.
  [[nodiscard]] std::size_t quotedLength() const {
    const std::size_t end = left_.find(left_.front(), 1);
    return end == std::string_view::npos ? left_.size() : end + 1;
  }

  std::string_view takenWord() {
    const auto end = std::find_if_not(left_.begin(), left_.end(), isWordLetter);
    return taken(static_cast<std::size_t>(end - left_.begin()));
  }

  void rewriteParameter() {
    left_.remove_prefix(1);
    const std::string_view digits = takenWord();
    const int number = digits.empty() ? last_ + 1 : std::stoi(std::string(digits));
    last_ = std::max(last_, number);
    made_ += "$" + std::to_string(number);
  }

  void rewriteWord() {
    const std::string_view word = takenWord();
    if (word == "user") {
      made_ += "\"user\"";
    } else if (word == "INDEXED") {
      taken(std::string_view(" BY ").size());
      takenWord();
    } else {
      made_ += word;
    }
  }

  // A plus that adds stands behind a word or a bracket and a blank.
  [[nodiscard]] bool isHint() const {
    return left_.front() == '+' && left_.size() > 1 && isWordLetter(left_[1]) &&
           std::isdigit(static_cast<unsigned char>(left_[1])) == 0;
  }

  std::string_view left_;
  std::string made_;
  int last_ = 0;
};

}  // namespace

std::string postgresSql(std::string_view sql) { return Rewriting(sql).result(); }

}  // namespace kivo::book_postgresql
