// Tests paths of any length: their parts and components, changes, order, and conversions. All tables hold on
// every system, because they name the syntax. fuzz/path_syntax_fuzz.cpp tests that hostile texts keep the
// rules.
#include "vel_include/vel_path.h"

#include <random>

#include "platform/test/test.h"
#include "vel_include/vel_memmgr.h"

namespace {

using vel::test::readTable;

VelEnPathSyntax syntaxOf(const std::string& name) {
  const std::map<std::string, VelEnPathSyntax> syntaxes = {{"slash", PATH_SYNTAX_SLASH},
                                                           {"backslash", PATH_SYNTAX_BACKSLASH},
                                                           {"filename", PATH_SYNTAX_AS_FILENAME}};
  return syntaxes.at(name);
}

VelClPath pathOf(const std::string& syntax, const std::string& text) {
  return {text, syntaxOf(syntax)};
}

std::string componentsOf(const VelClPath& path) {
  std::string result;
  for (const std::string_view component : path)
    result += std::string(result.empty() ? "" : "|") + std::string(component);
  return result;
}

TEST(Path, IsSplitIntoParts) {
  for (const auto& row : readTable(VEL_TEST_DATA "test/path_parts.tsv")) {
    const VelClPath path = pathOf(row[0], row[1]);
    std::string parts;
    for (const std::string_view part : {path.getRootName(), path.getRoot(), path.getParent(), path.getStem(),
                                        path.getExtension(), path.getExtensions()})
      parts += std::string(part) + "|";
    EXPECT_EQ(row.at(2), parts) << row[1];
    EXPECT_EQ(path.getName(), std::string(path.getStem()) + std::string(path.getExtension()));
    EXPECT_EQ(row.at(3), componentsOf(path)) << row[1];
    EXPECT_EQ(row.at(4), (path.isAbsolute() ? "A" : "") + std::string(path.isReserved() ? "R" : ""))
        << row[1];
    EXPECT_EQ(path.getText(), row[1]);
  }
}

// A failure keeps the path and shows as PATH_INVALID.
std::string changed(VelClPath path, const std::string& change, const std::string& argument) {
  const VelClPath other(argument, path.getSyntax());
  const std::map<std::string, std::function<VelClStatus()>> changes = {
      {"append", [&] { return path.append(argument), VelClStatus(); }},
      {"join", [&] { return path.join(argument), VelClStatus(); }},
      {"name", [&] { return path.setNewName(argument), VelClStatus(); }},
      {"stem", [&] { return path.setNewStem(argument), VelClStatus(); }},
      {"extension", [&] { return path.setNewExtension(argument), VelClStatus(); }},
      {"parent",
       [&] {
         return path.setToParent() ? VelClStatus() : VelClStatus(PATH_INVALID, VelEnErrorClass::LOGIC);
       }},
      {"normal", [&] { return path.makeNormal(), VelClStatus(); }},
      {"absolute", [&] { return path.makeAbsolute(other); }},
      {"relative", [&] { return path.makeRelative(other); }},
      {"convert", [&] { return path.convertTo(syntaxOf(argument)); }},
  };
  const std::string before(path.getText());
  const VelClStatus status = changes.at(change)();
  if (status.isOk()) return std::string(path.getText());
  EXPECT_EQ(status.getErrorId(), static_cast<unsigned long>(PATH_INVALID));
  EXPECT_EQ(path.getText(), before);
  return "(fails)";
}

TEST(Path, CanBeChanged) {
  for (const auto& row : readTable(VEL_TEST_DATA "test/path_changes.tsv")) {
    const std::string result = changed(pathOf(row[0], row[1]), row[2], row[3]);
    EXPECT_EQ(row.at(4), result) << row[1] << " " << row[2] << " " << row[3];
    // The normal form of a normal form is the same.
    if (row[2] != "normal") continue;
    EXPECT_EQ(changed(pathOf(row[0], result), "normal", ""), result);
  }
}

std::string order(int result) {
  return result < 0 ? "<" : result > 0 ? ">" : "=";
}

TEST(Path, IsComparedByComponents) {
  for (const auto& row : readTable(VEL_TEST_DATA "test/path_order.tsv")) {
    const VelClPath a = pathOf(row[0], row[1]), b = pathOf(row[0], row[2]);
    EXPECT_EQ(row.at(3), order(a.compare(b)) + order(a.compareAsSystem(b))) << row[1] << " " << row[2];
    EXPECT_EQ(a.compare(b), -b.compare(a)) << row[1];
    EXPECT_EQ(a.compareAsSystem(b) < 0, b.compareAsSystem(a) > 0) << row[1];
    EXPECT_EQ(a < b, row[3][0] == '<');
    // A text is compared in the syntax of the path.
    const std::string_view text = row[2];
    EXPECT_EQ(a == row[2], a == b);
    EXPECT_EQ(text == a, a == b);
    EXPECT_EQ(a < row[2].c_str(), a < b);
  }
}

/// A name of some characters that matter to the rules.
std::string randomName(std::mt19937& random) {
  static constexpr std::string_view kPieces[] = {"\\", "/", "\\\\", ".",        "..", ":",
                                                 "C:", "a", "B",    "\xC3\xA4", " ",  "?"};
  std::string name;
  for (auto count = random() % 10; count > 0; --count) name += kPieces[random() % std::size(kPieces)];
  return name;
}

/// Whether a path has a root that VelClFilename does not know: a prefix of devices, two separators without
/// server and share, or "." as the drive, which is the start of an extension there.
bool hasOtherRoot(const VelClPath& path) {
  const bool isBackslash = path.getSyntax() == PATH_SYNTAX_BACKSLASH;
  const VelClFilename name(path.getAsCString());
  const bool isIncomplete = isBackslash && path.getText().starts_with("\\\\") && !name.isUNC();
  const std::string_view root = path.getRootName();
  const bool hasPrefix = root.starts_with("\\\\") && root.find_first_of(".?") == 2;
  return isIncomplete || hasPrefix || root.starts_with("\\??") || root == ".:";
}

TEST(Path, FollowsTheRulesOfFileNames) {
  std::mt19937 random(1);
  int compared = 0;
  for (int i = 0; i < 20000; ++i) {
    std::string text = randomName(random);
    const VelClPath asWritten(text, PATH_SYNTAX_AS_FILENAME);
    EXPECT_EQ(asWritten.getPathSep(), VelClFilename(text.c_str()).getPathSep()) << text;
    // In backslash style all separators are equal: the names that have one kind are compared.
    if (asWritten.getSyntax() == PATH_SYNTAX_BACKSLASH) VelClPathProperty::normalizePath(text.data());
    const VelClPath path(text, asWritten.getSyntax());
    const VelClFilename name(text.c_str());
    if (hasOtherRoot(path)) continue;
    ++compared;
    EXPECT_EQ(path.getRootName().size() > 2, name.isUNC()) << text;
    EXPECT_EQ(path.isAbsolute(), name.isAbsolute() && !text.starts_with("\\:")) << text;
    // The drive is a part of VelClFilename's last component, if nothing is between them.
    const bool isDriveRelative = path.getRoot() == path.getRootName() && path.getRoot().size() == 2;
    const std::string last = isDriveRelative && !name.hasPath() ? name.getName() + 2 : name.getName();
    EXPECT_EQ(path.getName(), last) << text;
    const bool hasDotsInFront = last.find_first_not_of('.') > last.rfind('.');
    EXPECT_EQ(path.getExtension(), hasDotsInFront ? "" : name.getExtension()) << text;

    const std::string other = randomName(random);
    const VelClFilename joined(VelClLocation(text.c_str(), false), other.c_str(), nullptr);
    const bool isClosed = text.empty() || text.back() == path.getPathSep();
    if (VelClLocation(text.c_str(), false).getPathSep() != path.getPathSep() && !isClosed) continue;
    EXPECT_EQ(VelClPath(path).append(other).getText(), joined.getAsCString()) << text << ", " << other;
  }
  EXPECT_GT(compared, 15000);
}

TEST(Path, OwnsItsText) {
  VelClPath path(std::string(5000, 'x') + "/y", PATH_SYNTAX_SLASH);
  path.append(path.getName()).join(path.getText()).setNewName(path.getName());
  EXPECT_EQ(path.getText(), std::string(5000, 'x') + "/y/y/" + std::string(5000, 'x') + "/y/y");
  VelClPath copy = path;
  path.setToParent();
  EXPECT_EQ(copy.getLength(), path.getLength() + 2);
  const VelClPath moved = std::move(copy);
  EXPECT_TRUE(
      copy.isEmpty());  // NOLINT(bugprone-use-after-move): the empty path is what a move leaves behind
  copy = moved;
  EXPECT_EQ(copy, moved);
  copy = VelClPath("", PATH_SYNTAX_BACKSLASH);
  EXPECT_EQ(copy.getSyntax(), PATH_SYNTAX_BACKSLASH);
  EXPECT_STREQ(copy.getAsCString(), "");
  EXPECT_STREQ(VelClPath(static_cast<const char*>(nullptr)).getAsCString(), "");
  EXPECT_EQ(sizeof copy, sizeof(void*));
  const std::string_view view = moved / "z";
  static_assert(std::is_nothrow_move_constructible_v<VelClPath>);
  static_cast<void>(view);
}

TEST(Path, IsCheckedForTheSystem) {
  EXPECT_TRUE(VelClPath("a/\xC3\xA4").check().isOk());
  const std::string_view unusable("a\0b", 3);
  for (const auto& [text, position] : {std::pair<std::string_view, std::uint64_t>{"", 1}, {unusable, 2}}) {
    VelClPath path(text);
    EXPECT_EQ(path.getText(), text);
    VelClFilename name("old");
    std::filesystem::path standard("old");
    for (const VelClStatus& status :
         {path.check(), path.makeAbsolute(), path.toFilename(name), path.toStd(standard)}) {
      EXPECT_EQ(status.getErrorId(), static_cast<unsigned long>(PATH_INVALID));
      EXPECT_EQ(status.getPosition(), position);
      EXPECT_EQ(status.getName(), text);
    }
    EXPECT_STREQ(name.getAsCString(), "old");
    EXPECT_EQ(standard, "old");
  }
}

TEST(Path, BecomesAFileNameIfThatIsLongEnough) {
  VelClFilename name;
  for (const std::size_t length : {1U, 259U, 260U, 261U, 5000U}) {
    const VelClPath path(std::string(length, 'x'));
    const VelClStatus status = path.toFilename(name);
    EXPECT_EQ(status.isOk(), length <= VEL_MAX_PATH_LENGTH) << length;
    if (status.isOk()) {
      EXPECT_EQ(path.getText(), name.getAsCString());
      continue;
    }
    EXPECT_EQ(status.getErrorId(), static_cast<unsigned long>(PATH_TOO_LONG));
    EXPECT_EQ(status.getName(), path.getText());
    EXPECT_EQ(name.getLength(), 260U);
  }
  // Text that VelClFilename would read in another style.
  EXPECT_TRUE(VelClPath("C:\\a/b", PATH_SYNTAX_BACKSLASH).toFilename(name).isOk());
  EXPECT_STREQ(name.getAsCString(), "C:\\a\\b");
  for (const char* text : {"a\\b", "a:b"})
    EXPECT_EQ(VelClPath(text, PATH_SYNTAX_SLASH).toFilename(name).getErrorId(),
              static_cast<unsigned long>(PATH_INVALID));
}

TEST(Path, FromAFileNameNamesTheSameFile) {
  const vel::test::ScratchDirectory directory;
  const std::string written = directory.write("a.txt", "text");
  const VelClFilename name((written).c_str());
  const VelClDirectory parent{VelClLocation(name, false)};
  for (const VelClFilename& each : {name, VelClFilename(parent.getName(), "a.txt", nullptr)}) {
    VelClPath path;
    ASSERT_TRUE(VelClPath::fromFilename(each, path).isOk());
    EXPECT_TRUE(path.isAbsolute()) << path.getText();
    EXPECT_EQ(path.getSyntax(), VelClPath().getSyntax());
    std::filesystem::path standard;
    ASSERT_TRUE(path.toStd(standard).isOk());
    EXPECT_EQ(std::filesystem::file_size(standard), 4U);
    VelClPath again;
    ASSERT_TRUE(VelClPath::fromStd(standard, again).isOk());
    EXPECT_EQ(again.getText(), path.getText());
    VelClFilename back;
    ASSERT_TRUE(path.toFilename(back).isOk());
    EXPECT_TRUE(back.isExistent()) << back.getAsCString();
  }
  VelClPath text("\xC3\xA4/\xE6\x97\xA5");
  std::filesystem::path standard;
  ASSERT_TRUE(text.toStd(standard).isOk());
  EXPECT_EQ(standard, std::filesystem::path(u8"\u00E4/\u65E5"));
}

// Both syntaxes have an absolute form of "x", if the system's own is that style; otherwise backslash style
// has one.
TEST(Path, IsMadeAbsoluteFromTheCurrentDirectory) {
  const auto current = std::filesystem::current_path();
  VelClPath path("x");
  ASSERT_TRUE(path.makeAbsolute().isOk());
  std::filesystem::path standard;
  ASSERT_TRUE(path.toStd(standard).isOk());
  EXPECT_EQ(standard, current / "x");

  VelClDirectory expected;
  for (const std::string& text :
       {std::string("x"), std::string("\\x"), std::string(expected.getAsCString(), 2) + "x"}) {
    VelClPath backslash(text, PATH_SYNTAX_BACKSLASH);
    ASSERT_TRUE(backslash.makeAbsolute().isOk()) << text;
    const std::string directory =
        text[0] == '\\' ? expected.getAsCString() + std::string() : expected.getAsCString();
    EXPECT_EQ(backslash.getText(), text[0] == '\\' ? directory.substr(0, 3) + "x" : directory + "x");
  }
  for (const auto& [text, device] :
       {std::pair{"nul", "\\\\.\\nul"}, {"COM1: ", "\\\\.\\COM1"}, {"c:PRN", "\\\\.\\PRN"}}) {
    VelClPath name(text, PATH_SYNTAX_BACKSLASH);
    ASSERT_TRUE(name.makeAbsolute().isOk());
    EXPECT_EQ(name.getText(), device);
  }
}

void* noMemory(std::size_t) {
  return nullptr;
}

TEST(PlainPath, DoesWhatTheClassDoes) {
  const auto succeeded = [](VelStStatus* status) { return VelClStatus(status).isOk(); };
  VelStPath *path = nullptr, *base = nullptr, *none = nullptr;
  ASSERT_TRUE(succeeded(velPathCreate("C:/d/./x.txt#", 12, PATH_SYNTAX_BACKSLASH, &path)));
  ASSERT_TRUE(succeeded(velPathCopy(path, &base)));
  EXPECT_EQ(velPathCompare(path, base), 0);
  EXPECT_TRUE(velPathSetToParent(base));
  EXPECT_TRUE(succeeded(velPathSetNewStem(path, "Y", 1)) &&
              succeeded(velPathSetNewExtension(path, ".c", 2)) && succeeded(velPathMakeNormal(path)));
  EXPECT_STREQ(velPathGetText(path, nullptr), "C:\\d\\Y.c");
  EXPECT_TRUE(succeeded(velPathMakeRelative(path, base)) && succeeded(velPathMakeAbsolute(path, base)));
  std::size_t size = 0, position = 0;
  EXPECT_STREQ(velPathGetText(path, &size), "C:/d/.\\Y.c");
  EXPECT_EQ(size, 10U);
  const char* const part = velPathGetPart(path, PATH_PART_NAME, &size);
  EXPECT_EQ(std::string(part, size), "Y.c");
  std::string components;
  while (const char* component = velPathGetComponent(path, &position, &size))
    components += std::string(component, size) + "|";
  EXPECT_EQ(components, "C:/|d|.|Y.c|");
  EXPECT_TRUE(velPathIsAbsolute(path) && !velPathIsReserved(path) && succeeded(velPathCheck(path)));
  EXPECT_TRUE(succeeded(velPathSetNewName(path, nullptr, 7)) && succeeded(velPathAppend(path, "a", 1)) &&
              succeeded(velPathJoin(path, "B", 1)));
  EXPECT_TRUE(succeeded(velPathAppend(base, "a/b", 3)));
  EXPECT_EQ(velPathCompareAsSystem(base, path), 0);
  EXPECT_NE(velPathCompare(base, path), 0);
  EXPECT_TRUE(succeeded(velPathConvert(path, PATH_SYNTAX_SLASH)));
  EXPECT_EQ(velPathGetSyntax(path), PATH_SYNTAX_SLASH);
  char name[VEL_MAX_PATH_LENGTH + 1] = "";
  ASSERT_TRUE(succeeded(velPathFromFilename("a", &none)) && succeeded(velPathToFilename(none, name)));
  EXPECT_STREQ(name, "a");
  EXPECT_TRUE(succeeded(velPathAppend(none, std::string(300, 'x').c_str(), 300)));
  EXPECT_EQ(VelClStatus(velPathToFilename(none, name)).getErrorId(),
            static_cast<unsigned long>(PATH_TOO_LONG));
  EXPECT_STREQ(name, "");
  velPathFree(none);

  // No exception leaves a plain function.
  const std::string before = velPathGetText(path, nullptr), text(100, 'x');
  VelClMemoryManager::setNewMemoryManager(noMemory, nullptr, std::free);
  for (VelStStatus* status : {velPathCopy(path, &none), velPathAppend(path, text.data(), text.size()),
                              velPathMakeNormal(base), velPathMakeRelative(path, base)})
    EXPECT_EQ(VelClStatus(status).getClass(), VelEnErrorClass::OUT_OF_MEMORY);
  VelClMemoryManager::setNewMemoryManager(std::malloc, std::realloc, std::free);
  EXPECT_EQ(none, nullptr);
  EXPECT_EQ(velPathGetText(path, nullptr), before);
  velPathFree(path);
  velPathFree(base);
  velPathFree(nullptr);
}

}  // namespace
