#include "tools/veltrace/regular_expression.h"

#include <utility>

namespace vel::veltrace {
namespace {

/// Limits the time per byte of a text, and how deep groups nest.
constexpr std::size_t kMostInstructions = 4096;
constexpr int kDeepestGroup = 100;

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  const char lower = static_cast<char>(c | 0x20);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

}  // namespace

/// Thrown where the expression is invalid.
struct InvalidAt {
  std::size_t offset;
};

/// Parses by recursive descent, from the end of what follows to the start: each function gets the instruction
/// that follows its part, and returns the first one of its part. Loops are closed afterwards.
class RegularExpression::Parser {
 public:
  Parser(RegularExpression& result, std::string_view text) : result_(result), text_(text) {}

  void parse() {
    const Piece all = alternatives(0);
    if (at_ != text_.size()) throw InvalidAt{at_};
    connect(all, add({Operation::Match, 0, 0, 0, 0}));
    result_.start_ = all.start;
  }

 private:
  /// A part of the program, and the places in it that go on to what follows.
  struct Piece {
    std::uint32_t start;
    std::vector<std::uint32_t> open;  ///< twice the index of an instruction, plus 1 for its `other`
  };

  bool atEnd() const { return at_ == text_.size(); }
  bool skip(char c) {
    if (atEnd() || text_[at_] != c) return false;
    ++at_;
    return true;
  }
  std::uint32_t add(Instruction instruction) {
    if (result_.program_.size() >= kMostInstructions) throw InvalidAt{at_};
    result_.program_.push_back(instruction);
    return static_cast<std::uint32_t>(result_.program_.size() - 1);
  }
  void connect(const Piece& piece, std::uint32_t target) {
    for (const std::uint32_t place : piece.open) {
      Instruction& instruction = result_.program_[place / 2];
      (place % 2 != 0 ? instruction.other : instruction.next) = target;
    }
  }
  Piece single(Instruction instruction) {
    const std::uint32_t index = add(instruction);
    return {index, {2 * index}};
  }
  /// An empty piece: a split whose ways are the same.
  Piece empty() {
    const std::uint32_t index = add({Operation::Split, 0, 0, 0, 0});
    return {index, {2 * index, 2 * index + 1}};
  }

  Piece alternatives(int depth) {
    if (depth > kDeepestGroup) throw InvalidAt{at_};
    Piece piece = sequence(depth);
    while (skip('|')) {
      const Piece other = sequence(depth);
      const std::uint32_t split = add({Operation::Split, 0, 0, piece.start, other.start});
      piece.start = split;
      piece.open.insert(piece.open.end(), other.open.begin(), other.open.end());
    }
    return piece;
  }
  Piece sequence(int depth) {
    Piece piece = empty();
    while (!atEnd() && text_[at_] != '|' && text_[at_] != ')') {
      const Piece next = repeated(depth);
      connect(piece, next.start);
      piece.open = next.open;
    }
    return piece;
  }
  Piece repeated(int depth) {
    Piece piece = atom(depth);
    while (!atEnd() && (text_[at_] == '*' || text_[at_] == '+' || text_[at_] == '?')) {
      const char kind = text_[at_++];
      const std::uint32_t split = add({Operation::Split, 0, 0, piece.start, 0});
      if (kind == '?') {
        piece.open.push_back(2 * split + 1);
      } else {
        connect(piece, split);
        piece.open = {2 * split + 1};
      }
      if (kind != '+') piece.start = split;
    }
    return piece;
  }
  Piece atom(int depth) {
    const std::size_t start = at_;
    const char c = text_[at_++];
    switch (c) {
      case '(': {
        Piece piece = alternatives(depth + 1);
        if (!skip(')')) throw InvalidAt{start};
        return piece;
      }
      case '*':
      case '+':
      case '?':
        throw InvalidAt{start};
      case '^':
        return single({Operation::Start, 0, 0, 0, 0});
      case '$':
        return single({Operation::End, 0, 0, 0, 0});
      case '.':
        return set(~ByteSet());
      case '[':
        return set(brackets(start));
      case '\\':
        return set(escape(start));
      default:
        return single({Operation::Byte, static_cast<unsigned char>(c), 0, 0, 0});
    }
  }
  Piece set(const ByteSet& bytes) {
    result_.sets_.push_back(bytes);
    return single({Operation::Set, 0, static_cast<std::uint32_t>(result_.sets_.size() - 1), 0, 0});
  }

  static ByteSet one(unsigned int byte) { return ByteSet().set(byte); }
  template <typename Test>
  static ByteSet where(Test test) {
    ByteSet bytes;
    for (unsigned int byte = 0; byte < 128; ++byte) bytes[byte] = test(static_cast<char>(byte));
    return bytes;
  }
  /// Parses what follows a backslash.
  ByteSet escape(std::size_t start) {
    if (atEnd()) throw InvalidAt{start};
    const char c = text_[at_++];
    const auto isDigit = [](char d) { return d >= '0' && d <= '9'; };
    const auto isWord = [&](char d) {
      return isDigit(d) || d == '_' || ((d | 0x20) >= 'a' && (d | 0x20) <= 'z');
    };
    const auto isSpace = [](char d) { return d == ' ' || (d >= '\t' && d <= '\r'); };
    switch (c) {
      case 'd':
        return where(isDigit);
      case 'w':
        return where(isWord);
      case 's':
        return where(isSpace);
      case 'n':
        return one('\n');
      case 't':
        return one('\t');
      case 'x':
        return one(hexByte(start));
      default:
        // Letters and digits are kept for later use.
        if (isWord(c) && c != '_') throw InvalidAt{start};
        return one(static_cast<unsigned char>(c));
    }
  }
  unsigned int hexByte(std::size_t start) {
    const int high = at_ + 2 <= text_.size() ? hexDigit(text_[at_]) : -1;
    const int low = high >= 0 ? hexDigit(text_[at_ + 1]) : -1;
    if (low < 0) throw InvalidAt{start};
    at_ += 2;
    return static_cast<unsigned int>(high * 16 + low);
  }
  /// Parses the rest of "[...]". A "]" that comes first is a character of the set.
  ByteSet brackets(std::size_t start) {
    ByteSet bytes;
    const bool isNegated = skip('^');
    for (bool isFirst = true; atEnd() || text_[at_] != ']' || isFirst; isFirst = false) {
      if (atEnd()) throw InvalidAt{start};
      const std::size_t from = at_;
      const ByteSet first = bracketItem();
      if (at_ + 1 < text_.size() && text_[at_] == '-' && text_[at_ + 1] != ']') {
        ++at_;
        addRange(bytes, first, bracketItem(), from);
      } else {
        bytes |= first;
      }
    }
    ++at_;
    return isNegated ? ~bytes : bytes;
  }
  ByteSet bracketItem() {
    const std::size_t start = at_;
    const char c = text_[at_++];
    return c == '\\' ? escape(start) : one(static_cast<unsigned char>(c));
  }
  static void addRange(ByteSet& bytes, const ByteSet& first, const ByteSet& last, std::size_t offset) {
    if (first.count() != 1 || last.count() != 1) throw InvalidAt{offset};
    const std::size_t low = first._Find_first(), high = last._Find_first();
    if (low > high) throw InvalidAt{offset};
    for (std::size_t byte = low; byte <= high; ++byte) bytes.set(byte);
  }

  RegularExpression& result_;
  std::string_view text_;
  std::size_t at_ = 0;
};

/// The instructions that wait for the next byte, each at most once.
class RegularExpression::Threads {
 public:
  Threads(const RegularExpression& expression, std::string_view text)
      : program_(&expression.program_), size_(text.size()), seen_(program_->size(), 0) {}

  void begin(std::size_t position) {
    waiting_.clear();
    position_ = position;
    ++round_;
  }
  /// Follows all ways from an instruction up to those that wait. Returns whether one of them matches.
  bool add(std::uint32_t index) {
    pending_.assign(1, index);
    while (!pending_.empty()) {
      index = pending_.back();
      pending_.pop_back();
      if (seen_[index] == round_) continue;
      seen_[index] = round_;
      const Instruction& instruction = (*program_)[index];
      switch (instruction.operation) {
        case Operation::Match:
          return true;
        case Operation::Split:
          pending_.push_back(instruction.other);
          pending_.push_back(instruction.next);
          break;
        case Operation::Start:
          if (position_ == 0) pending_.push_back(instruction.next);
          break;
        case Operation::End:
          if (position_ == size_) pending_.push_back(instruction.next);
          break;
        default:
          waiting_.push_back(index);
      }
    }
    return false;
  }
  const std::vector<std::uint32_t>& waiting() const { return waiting_; }

 private:
  const std::vector<Instruction>* program_;
  std::size_t size_;
  std::size_t position_ = 0;
  std::size_t round_ = 0;
  std::vector<std::size_t> seen_;
  std::vector<std::uint32_t> waiting_, pending_;
};

bool RegularExpression::parse(std::string_view expression, std::size_t& position) {
  program_.clear();
  sets_.clear();
  try {
    Parser(*this, expression).parse();
    return true;
  } catch (const InvalidAt& invalid) {
    position = invalid.offset + 1;
    return false;
  }
}

bool RegularExpression::isIn(std::string_view text) const {
  Threads now(*this, text), next(*this, text);
  now.begin(0);
  for (std::size_t position = 0;; ++position) {
    if (now.add(start_)) return true;
    if (position == text.size()) return false;
    const auto byte = static_cast<unsigned char>(text[position]);
    next.begin(position + 1);
    for (const std::uint32_t index : now.waiting()) {
      const Instruction& instruction = program_[index];
      const bool goesOn =
          instruction.operation == Operation::Byte ? instruction.byte == byte : sets_[instruction.set][byte];
      if (goesOn && next.add(instruction.next)) return true;
    }
    std::swap(now, next);
  }
}

}  // namespace vel::veltrace
