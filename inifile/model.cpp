// Creates, finds, changes and deletes the records of sections and options, and links them into lists. An
// option is one block of the pool, its texts included:
//
//   next_ | value_ | comment_ | textUnits_ | recordUnits_ | name NUL value NUL comment NUL
//
// value_ and comment_ are offsets from the name. A new text that does not fit goes to a block of its own, and
// a pointer to that replaces the old text. The record itself never moves, because callers hold pointers to
// it. Building the texts of an option is option_text.cpp's work.
#include "inifile/model.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "base/ascii.h"
#include "foundation/allocator.h"

namespace vel::inifile {

namespace {

/// Shorter lists are searched without an index, whose hash values would cost more than a few comparisons.
constexpr std::size_t kIndexedLength = 8;

/// The offset of the text in its record. text_ is declared with two characters only, but the record extends
/// as far as the text does.
constexpr std::size_t kTextOffset = sizeof(void*) + 2 * sizeof(std::uint16_t) + 2;
/// A record of a short text must still have room for the pointer to a longer one.
constexpr std::size_t kSmallestRecord = kTextOffset + sizeof(char*);

template <typename Record>
Record* findInList(Record* record, const char* name) noexcept {
  while (record != nullptr && !equalsIgnoringAsciiCase(record->getName(), name)) record = record->getNext();
  return record;
}

template <typename Record>
Record* recordBefore(Record* first, const Record& record) noexcept {
  Record* before = nullptr;
  for (; first != &record; first = first->getNext()) before = first;
  return before;
}

}  // namespace

Model::~Model() {
  // Cursors may outlive the file. Records need no loop: their memory goes with the pool.
  for (; places_ != nullptr; places_ = places_->next_) {
    places_->file_ = nullptr;
    places_->section_ = nullptr;
    places_->option_ = nullptr;
  }
  for (Section* section = file_.firstSection_; section != nullptr; section = section->next_)
    destroy(indexOf(*section));
  destroy(sectionIndex_);
}

Model::Section* Model::findSection(const char* name) {
  if (name == nullptr) return nullptr;
  if (sectionCount_ < kIndexedLength) return findInList(file_.firstSection_, name);
  if (sectionIndex_ == nullptr) sectionIndex_ = create<SectionIndex>(file_.firstSection_, sectionCount_);
  return sectionIndex_->find(name);
}

Model::Option* Model::findOption(const Section& section, const char* name) {
  if (name == nullptr) return nullptr;
  if (section.optionCount_ < kIndexedLength) return findInList(section.firstOption_, name);
  // The index is a cache, so building it does not change the section for the caller.
  auto& indexed = const_cast<Section&>(section);
  if (section.index_ == nullptr)
    indexed.index_ = create<OptionIndex>(section.firstOption_, section.optionCount_);
  return indexOf(section)->find(name);
}

void Model::setName(Section& section, Span name) noexcept {
  const std::size_t length = std::min(name.length(), Section::kMaxNameLength);
  if (length != 0) std::memcpy(section.name_, name.begin, length);
  section.name_[length] = '\0';
}

/// The index, a cache, is dropped and built again when it is needed.
void Model::renameSection(Section& section, Span name) noexcept {
  destroy(std::exchange(sectionIndex_, nullptr));
  setName(section, name);
}

void Model::renameOption(Section& section, Option& option, Span name) {
  OptionText text(name);
  text.addToValue(option.getValue(), std::strlen(option.getValue()));
  text.setComment({option.getComment(), option.getComment() + std::strlen(option.getComment())});
  replaceText(option, text);
  destroy(indexOf(section));
  section.index_ = nullptr;
}

Model::Section* Model::appendSection(Span name) {
  constexpr std::size_t kUnits = RecordPool::unitsFor(sizeof(Section));
  auto* const section = ::new (pool_.allocate(kUnits)) Section{};
  setName(*section, name);
  // The index is updated first: when it finds no memory, the list is unchanged.
  try {
    if (sectionIndex_ != nullptr) sectionIndex_->add(section, file_.lastSection_);
  } catch (...) {
    pool_.deallocate(section, kUnits);
    throw;
  }
  (file_.lastSection_ != nullptr ? file_.lastSection_->next_ : file_.firstSection_) = section;
  file_.lastSection_ = section;
  ++sectionCount_;
  return section;
}

char* Model::textInRecord(Option& option) noexcept {
  return reinterpret_cast<char*>(&option) + kTextOffset;
}

/// Copies the text to `place`, its new location, and sets the offsets.
void Model::fill(Option& option, char* place, const OptionText& text) noexcept {
  std::memcpy(place, text.data(), text.size());
  option.value_ = static_cast<std::uint16_t>(text.valueOffset());
  option.comment_ = static_cast<std::uint16_t>(text.commentOffset());
}

Model::Option* Model::makeOption(const OptionText& text) {
  static_assert(offsetof(Option, text_) == kTextOffset);
  const std::size_t units = RecordPool::unitsFor(std::max(kTextOffset + text.size(), kSmallestRecord));
  auto* const option = ::new (pool_.allocate(units)) Option();
  option->next_ = nullptr;
  option->recordUnits_ = static_cast<std::uint8_t>(units);
  option->textUnits_ = 0;
  fill(*option, textInRecord(*option), text);
  return option;
}

Model::Option* Model::appendOption(Section& section, const OptionText& text) {
  Option* const option = makeOption(text);
  try {
    if (section.index_ != nullptr) indexOf(section)->add(option, section.lastOption_);
  } catch (...) {
    pool_.deallocate(option, option->recordUnits_);
    throw;
  }
  (section.lastOption_ != nullptr ? section.lastOption_->next_ : section.firstOption_) = option;
  section.lastOption_ = option;
  ++section.optionCount_;
  return option;
}

void Model::freeText(Option& option) noexcept {
  if (option.textUnits_ != 0) pool_.deallocate(const_cast<char*>(option.movedText()), option.textUnits_);
}

/// The record stays where it is; only the text may move. A text that grows gets twice the room that it needs:
/// otherwise each of many continuation lines would allocate again, and leave a free block of another size.
void Model::replaceText(Option& option, const OptionText& text) {
  constexpr std::size_t kMaxUnits = RecordPool::unitsFor(kOptionTextSize);
  constexpr std::size_t kUnitSize = RecordPool::kUnit;
  const bool isInRecord = option.textUnits_ == 0;
  const std::size_t room =
      isInRecord ? option.recordUnits_ * kUnitSize - kTextOffset : option.textUnits_ * kUnitSize;
  char* place = isInRecord ? textInRecord(option) : const_cast<char*>(option.movedText());
  if (text.size() > room) {
    const std::size_t units = std::min(RecordPool::unitsFor(text.size()) * 2, kMaxUnits);
    place = static_cast<char*>(pool_.allocate(units));
    freeText(option);
    std::memcpy(textInRecord(option), &place, sizeof place);
    option.textUnits_ = static_cast<std::uint8_t>(units);
  }
  fill(option, place, text);
}

void Model::deleteOption(Section& section, Option& option) noexcept {
  Option* const before = section.index_ != nullptr ? indexOf(section)->remove(&option)
                                                   : recordBefore(section.firstOption_, option);
  (before != nullptr ? before->next_ : section.firstOption_) = option.next_;
  if (section.lastOption_ == &option) section.lastOption_ = before;
  --section.optionCount_;
  if (openOption == &option) openOption = nullptr;
  // Cursors on the option become invalid.
  for (CursorPlace* place = places_; place != nullptr; place = place->next_)
    if (place->option_ == &option) place->option_ = nullptr;
  freeText(option);
  pool_.deallocate(&option, option.recordUnits_);
}

void Model::freeOptions(Section& section) noexcept {
  while (Option* const option = section.firstOption_) {
    section.firstOption_ = option->next_;
    freeText(*option);
    pool_.deallocate(option, option->recordUnits_);
  }
}

void Model::deleteSection(Section& section) noexcept {
  Section* const before =
      sectionIndex_ != nullptr ? sectionIndex_->remove(&section) : recordBefore(file_.firstSection_, section);
  (before != nullptr ? before->next_ : file_.firstSection_) = section.next_;
  if (file_.lastSection_ == &section) file_.lastSection_ = before;
  --sectionCount_;
  if (file_.currentSection_ == &section) file_.currentSection_ = nullptr;
  // It may be an option of this section: an error handler can delete sections during a load.
  openOption = nullptr;
  for (CursorPlace* place = places_; place != nullptr; place = place->next_)
    if (place->section_ == &section) place->section_ = nullptr, place->option_ = nullptr;
  destroy(indexOf(section));
  freeOptions(section);
  pool_.deallocate(&section, RecordPool::unitsFor(sizeof(Section)));
}

/// A doubly linked list, so that a cursor is removed in constant time.
void Model::add(CursorPlace& place) noexcept {
  place.previous_ = nullptr;
  place.next_ = places_;
  if (places_ != nullptr) places_->previous_ = &place;
  places_ = &place;
}

void Model::remove(CursorPlace& place) noexcept {
  (place.previous_ != nullptr ? place.previous_->next_ : places_) = place.next_;
  if (place.next_ != nullptr) place.next_->previous_ = place.previous_;
}

}  // namespace vel::inifile

const char* VelClIniFileOption::movedText() const {
  // The pointer is not aligned there, so it is copied.
  const char* text = nullptr;
  std::memcpy(&text, reinterpret_cast<const char*>(this) + vel::inifile::kTextOffset, sizeof text);
  return text;
}
