// Owns the text of a path, and changes it: every change builds a new text, which then replaces the old one.
// The rules are those of path_syntax.h; what depends on the system is path_conversion.cpp's work.
#include "base/short_text.h"
#include "filesys/path_content.h"
#include "foundation/status.h"

namespace filesys = vel::filesys;
using vel::String;

VelClPath::VelClPath(const char* characters, size_t size, VelEnPathSyntax syntax) : content_(nullptr) {
  const std::string_view text = textOrEmpty(characters, size);
  const VelEnPathSyntax resolved = filesys::resolvedSyntax(syntax, text);
  // The empty path needs no memory, unless its syntax has to be remembered.
  if (!text.empty() || resolved != getSyntax()) content_ = vel::create<Content>(text, resolved);
}

VelClPath::VelClPath(const VelClPath& other)
    : content_(other.content_ != nullptr ? vel::create<Content>(*other.content_) : nullptr) {}

VelClPath::~VelClPath() {
  vel::destroy(content_);
}

const char* VelClPath::getAsCString() const noexcept {
  return content_ != nullptr ? content_->text.c_str() : "";
}

size_t VelClPath::getLength() const noexcept {
  return content_ != nullptr ? content_->text.size() : 0;
}

VelEnPathSyntax VelClPath::getSyntax() const noexcept {
  return content_ != nullptr ? content_->syntax : filesys::resolvedSyntax(PATH_SYNTAX_SYSTEM, {});
}

const char* VelClPath::getPart(VelEnPathPart part, size_t& size) const noexcept {
  const std::string_view found = filesys::partOf(Content::viewOf(*this), part);
  size = found.size();
  return found.data();
}

const char* VelClPath::getComponent(size_t& position, size_t& size) const noexcept {
  std::string_view component;
  const bool isFound = filesys::nextComponent(Content::viewOf(*this), position, component);
  size = component.size();
  return isFound ? component.data() : nullptr;
}

bool VelClPath::isAbsolute() const noexcept {
  return filesys::isAbsolute(Content::viewOf(*this));
}

bool VelClPath::isReserved() const noexcept {
  const filesys::PathView view = Content::viewOf(*this);
  const bool canBe = !view.isSlash() && filesys::rootOf(view).kind != filesys::PathRoot::Kind::Verbatim;
  return canBe && !filesys::deviceIn(getName()).empty();
}

VelClPath& VelClPath::append(const char* text, size_t size) {
  Content::replace(*this, filesys::appended(Content::viewOf(*this), textOrEmpty(text, size)));
  return *this;
}

VelClPath& VelClPath::join(const char* text, size_t size) {
  Content::replace(*this, filesys::joined(Content::viewOf(*this), textOrEmpty(text, size)));
  return *this;
}

void VelClPath::setNewName(const char* characters, size_t size) {
  const std::string_view name = textOrEmpty(characters, size);
  const std::string_view text = getText();
  const filesys::PathView directory{text.substr(0, text.size() - getName().size()), getSyntax()};
  // A server and share can be there without a separator, which has to be between them and a name.
  const bool isShare = filesys::rootOf(directory).kind == filesys::PathRoot::Kind::Network;
  String changed;
  if (isShare && !name.empty()) {
    changed = filesys::appended(directory, name);
  } else {
    changed.reserve(directory.text.size() + name.size());
    changed = directory.text;
    changed += name;
  }
  Content::replace(*this, std::move(changed));
}

void VelClPath::setNewStem(const char* stem, size_t size) {
  String name(textOrEmpty(stem, size));
  name += getExtension();
  setNewName(name);
}

void VelClPath::setNewExtension(const char* characters, size_t size) {
  const std::string_view extension = textOrEmpty(characters, size);
  String name(getStem());
  if (!extension.empty()) {
    name += '.';
    name += filesys::withoutDot(extension);
  }
  setNewName(name);
}

bool VelClPath::setToParent() {
  const std::string_view parent = getParent();
  if (parent.size() == getLength()) return false;
  content_->text.resize(parent.size());
  return true;
}

void VelClPath::makeNormal() {
  Content::replace(*this, filesys::normal(Content::viewOf(*this)));
}

VelClStatus VelClPath::makeRelative(const VelClPath& base) {
  const VelClPath from = base.getNormal(), to = getNormal();
  String relative;
  const bool areAlike = base.getSyntax() == getSyntax();
  const auto compareNames = filesys::systemComparison(getSyntax());
  if (!areAlike || !filesys::makeRelative(Content::viewOf(to), Content::viewOf(from), compareNames, relative))
    return {PATH_INVALID, VelEnErrorClass::IO_INVALID_NAME, 0, getText()};
  Content::replace(*this, std::move(relative));
  return {};
}

int VelClPath::compare(const VelClPath& other) const noexcept {
  return filesys::compareComponents(Content::viewOf(*this), Content::viewOf(other), filesys::compareBytes);
}

int VelClPath::compareWithText(const char* text, size_t size) const noexcept {
  return filesys::compareComponents(Content::viewOf(*this), {textOrEmpty(text, size), getSyntax()},
                                    filesys::compareBytes);
}

int VelClPath::compareAsSystem(const VelClPath& other) const noexcept {
  return filesys::compareComponents(Content::viewOf(*this), Content::viewOf(other),
                                    filesys::systemComparison(getSyntax()));
}
