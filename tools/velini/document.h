// A text that is read and edited, in any dialect.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velini/records.h"
#include "tools/velini/text_faults.h"

namespace vel::velini {

enum class EditKind { Set, Add, Delete, DeleteSection, Rename, RenameSection, CommentOut };

struct Edit {
  EditKind kind;
  std::string section;
  std::string option;
  std::string value;  ///< or the new name
};

/// Why an edit was not made: there is no such section or option, the new name exists, the option occurs more
/// than once, or the text would not read back as wanted.
enum class EditResult { Done, NotFound, Exists, Repeated, Refused };

/// An edit that is not made changes nothing; after a merge that is not made the text must not be used.
class Document {
 public:
  Document() = default;
  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;
  virtual ~Document() = default;

  /// Valid until the next edit.
  virtual std::string_view text() const = 0;
  virtual Records records() const = 0;
  virtual std::vector<Fault> faults() const = 0;
  virtual EditResult apply(const Edit& edit) = 0;
  /// Sets every option of `source` that counts, or none of them. `name` becomes the option that was refused,
  /// or is not changed if it is not known.
  virtual EditResult merge(const Document& source, std::string& name) = 0;
};

/// Edits what the editor has loaded, and the editor itself.
std::unique_ptr<Document> libraryDocument(VelClIniFileEditor& editor, bool allowContinuation);
std::unique_ptr<Document> dialectDocument(const Dialect& dialect, std::string text);

}  // namespace vel::velini
