// Numbered messages: catalogs that hold their texts per language, and messages with variables; and the names
// of languages and territories.
#ifndef VEL_MESSAGES_H_
#define VEL_MESSAGES_H_

#include <stddef.h>
#include <stdint.h>

#include "vel_export.h"

#if defined(VEL_HAS_CLASSES)
#include <iosfwd>

#include "vel_cursor.h"
#include "vel_filesys.h"
#endif

/// The longest message in characters, variables included.
#define VEL_MAX_MESSAGE_LENGTH 4096
/// A message takes at most this many variables.
#define VEL_MAX_MESSAGE_VARIABLES 10

#if defined(__cplusplus)
class VelClMessageCatalog;
#else
typedef struct VelClMessageCatalog VelClMessageCatalog;
#endif

/// An open catalog of the functions below; it must not be null for any of them but velMsgCatClose. A file
/// name that is null counts as "", and a table that is null as none.
typedef struct VelStMsgCat* VelMsgCatHandle;

/// Opens the catalog library `fileName`, whose extension is replaced by ".DLL". Null when it cannot
/// be loaded. Sets the process's locale, as every opening of a catalog does, see
/// VelClMessageCatalog.
VEL_C_API VelMsgCatHandle velMsgCatOpen(const char* fileName);
/// A handle on a catalog that stays its owner's and must live longer. Null when that catalog's
/// library is not loaded.
VEL_C_API VelMsgCatHandle velMsgCatOpenAttach(const VelClMessageCatalog* catalog);
/// Opens the library, or takes the string table of `size` entries when it cannot be loaded; the table
/// is not copied. Never null.
VEL_C_API VelMsgCatHandle velMsgCatOpenOrUseStringTable(const char* fileName, const char* const* table,
                                                        unsigned long size);
/// Whether the message can be loaded.
VEL_C_API bool velMsgCatIsValid(VelMsgCatHandle handle, unsigned long id);
/// The message, or the text that says why there is none. The text lies in the handle and is valid
/// until the next call of velMsgCatGet or velMsgCatGetVar.
VEL_C_API const char* velMsgCatGet(VelMsgCatHandle handle, unsigned long id);
/// The same with variables: up to ten texts, ended by a null pointer if there are fewer. The first one is
/// taken without a test for null, so a call without variables passes two nulls, as pointers.
VEL_C_API const char* velMsgCatGetVar(VelMsgCatHandle handle, unsigned long id, ...);
/// The language number that the catalog chose, 0 without a library.
VEL_C_API unsigned int velMsgCatGetLanguage(VelMsgCatHandle handle);
/// Null is ignored.
VEL_C_API void velMsgCatClose(VelMsgCatHandle handle);
/// The library's own messages in English, as they are compiled in: a string table for ids below `*size`.
/// Entry 0 is the signature line, messages start at 2. `size` may be null.
VEL_C_API const char* const* velMsgCatGetBuiltInTable(unsigned long* size);

#if defined(VEL_HAS_CLASSES)

namespace vel::messages {
class CatalogLibrary;
}

/// A catalog of messages, numbered from 1. Its texts come from a message-table resource library (a Windows
/// DLL, read from its file on every system) in the user's language; without a loaded library
/// they come from a string table that the program attaches. A loaded library wins over the
/// table, also for ids that only the table has.
///
/// Language: the user's, if the library has message 1 in it, else the system's, else 1033 (US English).
/// Texts of Unicode libraries arrive in the process's single-byte code page (UTF-8 on most Linux
/// systems), those of single-byte libraries as they are stored.
///
/// Opening sets the process's locale for all categories to the user's (setlocale). From then on
/// isprint, toupper and their like judge bytes above 0x7F by that locale, everywhere in the process. So one
/// thread opens catalogs while no other goes by the locale.
class VEL_API VelClMessageCatalog : public VelClFile {
 public:
  /// The library's own catalog, "qammsg50.DLL". It is looked for beside this library, beside the program,
  /// along PATH, and only then as other catalogs are, so that a file in the current directory replaces no
  /// installed one.
  VelClMessageCatalog();
  /// The library `name` with its extension replaced by ".DLL"; a name without a directory is searched for
  /// as the system's loader does: beside the program, in the current directory, along PATH; on Linux
  /// at last beside this library too. It is read as data, none of its code runs. A file of more than 64 MB,
  /// or one that is cut or damaged so that the system's loader would refuse it, does not load.
  explicit VelClMessageCatalog(const VelClFilename& name);
  /// A catalog without a library: only the table's messages, and no change of the locale.
  VelClMessageCatalog(const char* const* table, unsigned long size);
  VelClMessageCatalog(const VelClMessageCatalog&) = delete;
  VelClMessageCatalog& operator=(const VelClMessageCatalog&) = delete;
  ~VelClMessageCatalog() override;

  /// Whether the library was loaded; a string table does not count.
  bool isValid() const { return loaded_; }
  /// Whether this is the library's own catalog, loaded or not.
  bool hasDefaultVelCatalog() const { return default_; }
  /// Whether a string table is attached.
  bool hasValidStringTable() const { return stringTable_ != nullptr; }
  /// Attaches a table of `size` entries, which must outlive the catalog; ids below `size` can be asked for.
  /// Entry 0 is the table's signature line and entry 1 its name.
  void useStringTable(const char* const* table, unsigned long size);
  /// True for every id but 0. No catalog is asked; entry 0 of a string table loads all the same.
  static bool isValidMessageId(unsigned long id) { return static_cast<uint32_t>(id) != 0; }
  /// The Windows language number chosen at opening, 0 without a library.
  unsigned int getLanguage() const { return language_; }

 private:
  friend class VelClMessage;
  friend class VelClMessageCatalogCursor;
  void open();
  void chooseLanguage();
  vel::messages::CatalogLibrary* library_ = nullptr;
  bool loaded_ = false;
  bool default_ = false;
  const char* const* stringTable_ = nullptr;
  uint32_t stringTableSize_ = 0;
  uint32_t language_ = 0;
  uint32_t languageFound_ = 0;
};

/// Walks every message that a catalog's library or, without one, its string table holds, by id and within
/// an id by language. The catalog must stay alive and keep its table. A library that repeats the same few
/// bytes as the messages of ever more languages is listed up to about four times its size.
class VEL_API VelClMessageCatalogCursor : public VelClUniDirCursorABase {
 public:
  /// Lists what the catalog holds now. Call setToFirst before you ask.
  explicit VelClMessageCatalogCursor(const VelClMessageCatalog& catalog);
  VelClMessageCatalogCursor(const VelClMessageCatalogCursor&) = delete;
  VelClMessageCatalogCursor& operator=(const VelClMessageCatalogCursor&) = delete;
  ~VelClMessageCatalogCursor() override;

  bool isValid() const override;
  bool setToFirst() override;
  bool setToNext() override;

  /// 0 on an invalid position.
  unsigned long getId() const;
  /// The Windows language number of this text, 0 for texts of a string table and on an invalid position.
  unsigned int getLanguage() const;
  /// The text as stored, with its inserts; "" on an invalid position. Texts of Unicode libraries are given
  /// in UTF-8 on every system, so that listings can be compared. Valid until the cursor moves.
  const char* getAsCString() const;

 private:
  struct Position;
  void listTable();
  void listLibrary();
  bool settleAt(size_t index);

  const VelClMessageCatalog& catalog_;
  Position* positions_;  ///< those of a library, sorted by id, then language; null with a string table
  size_t count_;
  size_t index_;
  char* text_;
};

/// One message with its variables substituted. It always has a text: that of a message that cannot be loaded
/// says so and names the catalog's file.
///
/// Variables are "%1" to "%10" in the catalog's text; one that is not given, or null, stands for "???".
/// Texts from a library follow all rules of the Windows message formatter ("%n", "%0", "%1!8s!"), texts
/// from a string table know "%%" besides.
class VEL_API VelClMessage {
 public:
  /// Loads the message. The catalog must outlive it.
  VelClMessage(const VelClMessageCatalog& catalog, unsigned long id);
  VelClMessage(const VelClMessageCatalog& catalog, unsigned long id, const char* var1,
               const char* var2 = nullptr, const char* var3 = nullptr, const char* var4 = nullptr,
               const char* var5 = nullptr, const char* var6 = nullptr, const char* var7 = nullptr,
               const char* var8 = nullptr, const char* var9 = nullptr, const char* var10 = nullptr);
  /// `variables` holds ten pointers, or is null: none is given then.
  VelClMessage(const VelClMessageCatalog& catalog, unsigned long id, const char* const* variables);
  VelClMessage(const VelClMessage& other);
  /// Takes over text, id and validity; this message keeps its own catalog.
  VelClMessage& operator=(const VelClMessage& other);
  ~VelClMessage();

  /// Load another message of the same catalog and return its text. The variables may point into the text
  /// of this message.
  const char* setNewMessageId(unsigned long id);
  const char* setNewMessageId(unsigned long id, const char* var1, const char* var2 = nullptr,
                              const char* var3 = nullptr, const char* var4 = nullptr,
                              const char* var5 = nullptr, const char* var6 = nullptr,
                              const char* var7 = nullptr, const char* var8 = nullptr,
                              const char* var9 = nullptr, const char* var10 = nullptr);

  /// Never null; valid until the message changes.
  const char* getAsCString() const { return text_; }
  /// The number that was asked for.
  unsigned long getId() const { return id_; }
  /// Whether the text came from the catalog.
  bool isValid() const { return loaded_; }
  /// Whether the text is too long, over 80 characters, for the buffer inside the object.
  bool hasAllocatedMemory() const { return text_ != inline_; }

 private:
  static constexpr size_t kInlineLength = 80;

  const char* loadMessage(uint32_t id, const char* const* variables);
  unsigned long replaceVars(char* out, unsigned long maxLength, const char* source,
                            const char* const* variables, unsigned long variableCount) const;
  size_t buildFailureText(uint32_t id, char* out) const;
  void store(const char* text, size_t length);

  const VelClMessageCatalog& catalog_;
  char inline_[kInlineLength + 1];
  char* text_;
  uint32_t id_;
  bool loaded_;
};

/// Writes the message's text.
VEL_API std::ostream& operator<<(std::ostream& stream, const VelClMessage& message);

/// A handle on a catalog, owned or not, with a buffer for one text.
class VEL_API VelClMessageCatalogProxy {
 public:
  /// Opens and owns a catalog.
  explicit VelClMessageCatalogProxy(const VelClFilename& name);
  /// The same; when its library cannot be loaded the table is attached.
  VelClMessageCatalogProxy(const VelClFilename& name, const char* const* table, unsigned long size);
  /// Refers to a catalog that stays its owner's.
  explicit VelClMessageCatalogProxy(const VelClMessageCatalog* catalog);
  VelClMessageCatalogProxy(const VelClMessageCatalogProxy&) = delete;
  VelClMessageCatalogProxy& operator=(const VelClMessageCatalogProxy&) = delete;
  ~VelClMessageCatalogProxy();

  /// Whether the catalog's library is loaded.
  bool isValid() const;
  /// Whether the message can be loaded.
  bool isValidMessageId(unsigned long id) const;
  /// The language number that the catalog chose, 0 without a library.
  unsigned int getLanguage() const;
  /// The message, or the text that says why there is none, in this object's buffer until the next call.
  const char* getMessage(unsigned long id);
  /// `variables` as those of VelClMessage.
  const char* getMessage(unsigned long id, const char* const* variables);

 private:
  bool owned_;
  const VelClMessageCatalog* catalog_;
  char text_[VEL_MAX_MESSAGE_LENGTH + 1];
};

/// A language together with a territory: a country or region. Both are rows of fixed tables, of 143 languages
/// (ISO 639 codes) and 242 territories (ISO 3166 codes), as the codes were in 1997; there is no connection to
/// the system's language numbers. All texts are literals, and codes are in lower case.
class VEL_API VelClLanguage {
 public:
  /// Row numbers, in the order of the two-letter codes.
  enum VelEnLanguage : uint32_t {
    LANGUAGE_UNSPECIFIED = 0,  ///< row 0
    LANGUAGE_UNKNOWN = 143     ///< behind the last row
  };
  /// Likewise.
  enum VelEnTerritory : uint32_t {
    TERRITORY_UNSPECIFIED = 0,  ///< row 0
    TERRITORY_UNKNOWN = 242     ///< behind the last row
  };

  /// "-", which stands between the two codes; tags may use "_" instead.
  static const char* const cv_cpszCombiningCharString;
  static char getCombiningChar() { return '-'; }
  static const char* getCombiningCharAsCString() { return cv_cpszCombiningCharString; }

  /// The language's number in the high 16 bits, the territory's in the low ones. Write 0 as `0U`.
  explicit VelClLanguage(unsigned int number);
  /// A tag of two-letter codes in any letter case, such as "en-US", "en_us" or "en"; "x-all" and
  /// "x-unspecified" leave both unspecified. A code that is not in its table is unknown, three-letter codes
  /// included. "_" separates only where the tag holds no "-". Null counts as "".
  explicit VelClLanguage(const char* tag);

  /// What the current user's settings say: on Windows the regional settings, on Linux the first of LC_ALL,
  /// LC_MESSAGES and LANG that is set; en-US when these say nothing.
  static VelClLanguage getUserLanguage();

  /// The number that the constructor takes, and its halves.
  unsigned int asNumber() const;
  VelEnLanguage getLanguage() const { return language_; }
  VelEnTerritory getTerritory() const { return territory_; }

  /// "??" when unknown, here and below.
  const char* getLanguageCode() const { return getLanguageCode(language_); }
  const char* getTerritoryCodeShort() const { return getTerritoryCodeShort(territory_); }
  const char* getTerritoryCodeLong() const { return getTerritoryCodeLong(territory_); }
  static const char* getLanguageCode(unsigned int language);
  static const char* getTerritoryCodeShort(unsigned int territory);
  static const char* getTerritoryCodeLong(unsigned int territory);
  /// In English.
  static const char* getLanguageName(unsigned int language);
  static const char* getTerritoryName(unsigned int territory);
  /// The number of ISO 3166, 0 for territories without one; -1 when unknown.
  static int getTerritoryIdNumber(unsigned int territory);
  /// The rows of the tables, "unspecified" included.
  static unsigned int getNumberOfLanguagesSupported();
  static unsigned int getNumberOfTerritoriesSupported();

  /// Write "en-us", or "en-usa", into a buffer of 7 or 8 characters.
  void extractShortCode(char* out) const;
  void extractLongCode(char* out) const;
  /// The same, but the language's code alone when the territory is unspecified or unknown.
  void extractISOShortCode(char* out) const;
  void extractISOLongCode(char* out) const;

 private:
  void parse(const char* tag);
  bool namesTerritory() const;

  VelEnLanguage language_;
  VelEnTerritory territory_;
};

/// Writes "en-us", "en" when the territory is unspecified, or "??" when either is unknown.
VEL_API std::ostream& operator<<(std::ostream& stream, const VelClLanguage& language);

#endif

#endif
