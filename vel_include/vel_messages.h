// Numbered messages: catalogs that hold their texts in several languages, and messages with inserts; also the
// names of languages and territories.
//
// Inserts are the texts that a program passes for the placeholders "%1" to "%10" of a message.
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

/// The maximum length of a message in bytes, with its inserts expanded.
#define VEL_MAX_MESSAGE_LENGTH 4096
/// The maximum number of inserts of a message.
#define VEL_MAX_MESSAGE_VARIABLES 10

#if defined(__cplusplus)
class VelClMessageCatalog;
#else
typedef struct VelClMessageCatalog VelClMessageCatalog;
#endif

/// An open catalog for the functions below. It must not be null, except for velMsgCatClose. A null file name
/// counts as "", and a null table means no table.
typedef struct VelStMsgCat* VelMsgCatHandle;

/// Opens the catalog library `fileName`, whose extension is replaced with ".DLL". Returns null if it cannot
/// be loaded. Like every opening of a catalog it sets the locale of the process, see VelClMessageCatalog.
VEL_C_API VelMsgCatHandle velMsgCatOpen(const char* fileName);
/// Returns a handle for an existing catalog, which its owner keeps and which must outlive the handle. Returns
/// null if the library of that catalog is not loaded.
VEL_C_API VelMsgCatHandle velMsgCatOpenAttach(const VelClMessageCatalog* catalog);
/// Opens the library, or uses the string table of `size` entries if it cannot be loaded; the table is not
/// copied. Never returns null.
VEL_C_API VelMsgCatHandle velMsgCatOpenOrUseStringTable(const char* fileName, const char* const* table,
                                                        unsigned long size);
/// True if the message can be loaded.
VEL_C_API bool velMsgCatIsValid(VelMsgCatHandle handle, unsigned long id);
/// Returns the message, or a text that says why it cannot be loaded. The handle owns the text, which is valid
/// until the next call of velMsgCatGet or velMsgCatGetVar.
VEL_C_API const char* velMsgCatGet(VelMsgCatHandle handle, unsigned long id);
/// Same with inserts: up to ten texts, followed by a null pointer if they are fewer than ten. Pass at least
/// one: the first one may be null without ending the list, so a call without inserts passes two null
/// pointers.
VEL_C_API const char* velMsgCatGetVar(VelMsgCatHandle handle, unsigned long id, ...);
/// Returns the language number that the catalog selected, or 0 without a library.
VEL_C_API unsigned int velMsgCatGetLanguage(VelMsgCatHandle handle);
/// Closes the catalog; null is ignored.
VEL_C_API void velMsgCatClose(VelMsgCatHandle handle);
/// Returns the library's own messages in English, which are compiled in: a string table for ids below
/// `*size`. Entry 0 is the signature line; messages start at 2. `size` may be null.
VEL_C_API const char* const* velMsgCatGetBuiltInTable(unsigned long* size);

/// Returns the language that readers of a regional language understand as well, both as Windows language
/// numbers: 1031 (German, Germany) for 3079 (German, Austria). Call it again with the result until it returns
/// 0, which means that there is no further one. Languages and scripts are never exchanged for others: Chinese
/// of Hong Kong becomes that of Taiwan, which has the same characters, and Serbian has no fallback.
VEL_C_API unsigned int velLanguageGetFallback(unsigned int language);
/// Removes the last subtag of a locale's name, or of a language tag: "de_AT.UTF-8" becomes "de", and "de"
/// becomes "", which means that there is no further one. A code set and a modifier ("@euro") are removed as
/// well, but not a modifier that names a script: "sr_RS@latin" becomes "sr@latin".
/// The script never changes. As in CLDR, languages in a script that is not their usual one have no fallback:
/// "zh-Hant-HK" becomes "zh-Hant" and then "", and so do "sr@latin" and "zh_TW". Null counts as "".
/// The result and a terminating NUL are written to `out`, which has room for `capacity` bytes; the length of
/// the result is returned. If the length is not less than `capacity`, `out` receives ""; with capacity 0, it
/// is not used and may be null. `out` must not overlap `name`.
VEL_C_API size_t velLocaleGetFallback(const char* name, char* out, size_t capacity);

#if defined(VEL_HAS_CLASSES)

namespace vel::messages {
class CatalogLibrary;
struct CatalogContents;
}  // namespace vel::messages

/// A catalog of messages, numbered from 1 (in string tables, from 2). Its texts come from a message-table
/// resource library (a Windows DLL, read from its file on every system) in the user's language. If no library
/// is loaded, they come from a string table that the program attaches. A loaded library takes precedence over
/// the table, even for ids that only the table contains.
///
/// The language is that of the user if the library has message 1 in it, else that of the system, else 1033
/// (US English); see also useLanguageFallback. Texts of Unicode libraries are returned in the ANSI code page
/// of the process (UTF-8 on most Linux systems), those of single-byte libraries as they are stored.
///
/// Opening a catalog sets the locale of the process, in all categories, to that of the user (setlocale). From
/// then on isprint, toupper and similar functions classify bytes above 0x7F by that locale, everywhere in the
/// process. Therefore open catalogs in one thread, while no other thread uses the locale.
class VEL_API VelClMessageCatalog : public VelClFile {
 public:
  /// Opens the library's own catalog, "qammsg50.DLL". It is searched beside this library, beside the program
  /// and along PATH, and only then like other catalogs, so that a file in the current directory cannot
  /// replace an installed catalog.
  VelClMessageCatalog();
  /// Opens the library `name` with its extension replaced by ".DLL". A name without a directory is searched
  /// in the order of the system's loader: beside the program, in the current directory, along PATH, and on
  /// Linux finally beside this library. The file is read as data; none of its code runs. A file of more than
  /// 64 MB does not load, nor does one that is truncated or so damaged that the system's loader would reject
  /// it.
  explicit VelClMessageCatalog(const VelClFilename& name);
  /// Which file a name means.
  enum class VelEnFile : uint32_t {
    LIBRARY = 0,  ///< the name with its extension replaced by ".DLL"
    AS_NAMED = 1  ///< the name as it is: also a program, or the translated resources of a library (.mui)
  };
  /// Same, but opens the file that `file` tells.
  VelClMessageCatalog(const VelClFilename& name, VelEnFile file);
  /// Constructs a catalog without a library: it has only the messages of the table, and does not change the
  /// locale.
  VelClMessageCatalog(const char* const* table, unsigned long size);
  VelClMessageCatalog(const VelClMessageCatalog&) = delete;
  VelClMessageCatalog& operator=(const VelClMessageCatalog&) = delete;
  ~VelClMessageCatalog() override;

  /// True if the library was loaded; a string table does not count.
  bool isValid() const { return loaded_; }
  /// True if this is the library's own catalog, loaded or not.
  bool hasDefaultVelCatalog() const { return default_; }
  /// True if a string table is attached.
  bool hasValidStringTable() const { return stringTable_ != nullptr; }
  /// Attaches a table of `size` entries, which must outlive the catalog and holds the messages with ids below
  /// `size`. Entry 0 is the signature line of the table and entry 1 its name.
  void useStringTable(const char* const* table, unsigned long size);
  /// True unless the low 32 bits of the id are 0. No catalog is consulted; entry 0 of a string table can be
  /// loaded nevertheless.
  static bool isValidMessageId(unsigned long id) { return static_cast<uint32_t>(id) != 0; }
  /// Returns the Windows language number selected at opening or by useLanguageFallback, or 0 without a
  /// library.
  unsigned int getLanguage() const { return language_; }
  /// Selects the first language that the library has of these: the user's, its fallbacks (see
  /// velLanguageGetFallback), the system's, its fallbacks. So a user in Austria reads German, even if the
  /// system's language is English. Returns whether the language has changed; without any of them it stays
  /// 1033. Call it after opening, before messages are read.
  bool useLanguageFallback();

 private:
  friend class VelClMessage;
  friend class VelClMessageCatalogCursor;
  void open();
  void chooseLanguage();
  bool tryLanguage(uint32_t language);
  vel::messages::CatalogLibrary* library_ = nullptr;
  bool loaded_ = false;
  bool default_ = false;
  const char* const* stringTable_ = nullptr;
  uint32_t stringTableSize_ = 0;
  uint32_t language_ = 0;
  uint32_t languageFound_ = 0;
};

/// Iterates over all messages of a catalog's library or, without a library, of its string table, ordered by
/// id and then by language. The catalog must outlive the cursor and keep its table. As a
/// protection against crafted libraries whose entries share the same data, listing stops at about four times
/// the size of the library.
class VEL_API VelClMessageCatalogCursor : public VelClUniDirCursorABase {
 public:
  /// Lists the current content of the catalog. The cursor is invalid until setToFirst.
  explicit VelClMessageCatalogCursor(const VelClMessageCatalog& catalog);
  VelClMessageCatalogCursor(const VelClMessageCatalogCursor&) = delete;
  VelClMessageCatalogCursor& operator=(const VelClMessageCatalogCursor&) = delete;
  ~VelClMessageCatalogCursor() override;

  bool isValid() const override;
  bool setToFirst() override;
  bool setToNext() override;

  /// Returns the id, or 0 if the cursor is invalid.
  unsigned long getId() const;
  /// Returns the Windows language number of this text; 0 for a text of a string table, or if the cursor is
  /// invalid.
  unsigned int getLanguage() const;
  /// Returns the text as stored, with its placeholders, or "" if the cursor is invalid. Texts of Unicode
  /// libraries are returned in UTF-8 on every system, so that listings can be compared. Valid until the
  /// cursor moves.
  const char* getAsCString() const;

 private:
  struct Position;
  void listTable();
  void listLibrary();
  bool moveTo(size_t index);

  const VelClMessageCatalog& catalog_;
  Position* positions_;  ///< those of a library, sorted by id, then language; null with a string table
  size_t count_;
  size_t index_;
  char* text_;
};

/// Writes a catalog: a Windows DLL for 64 bits without code, with a message table for each language. The
/// loader and the message formatter of Windows accept it, and VelClMessageCatalog on every system. The same
/// texts give the same bytes on every system, whatever their order.
///
/// A function that fails returns false and stores the reason in getLastError; one that succeeds clears it.
/// Only lack of memory throws (VelClExceptionFatal).
class VEL_API VelClMessageCatalogWriter : public VelClFile {
 public:
  /// Names the file like the constructor of VelClMessageCatalog: by default the extension is replaced by
  /// ".DLL". Nothing is written.
  explicit VelClMessageCatalogWriter(const VelClFilename& name, VelClMessageCatalog::VelEnFile file =
                                                                    VelClMessageCatalog::VelEnFile::LIBRARY);
  VelClMessageCatalogWriter(const VelClMessageCatalogWriter&) = delete;
  VelClMessageCatalogWriter& operator=(const VelClMessageCatalogWriter&) = delete;
  ~VelClMessageCatalogWriter() override;

  /// Sets the text of a message in one language, a Windows language number; it replaces an earlier one. The
  /// text is UTF-8, need not be NUL-terminated, and is stored as UTF-16. Escapes and line breaks are stored
  /// as they are; message compilers end lines with "\r\n". Fails with CONUI_MSGCAT_CORRUPTED: with
  /// INVALID_DATA if the text is not well-formed UTF-8 or contains a NUL, and with DATA_OUT_OF_BOUNDS if it
  /// is longer than 32,763 units of UTF-16, the language has more than 16 bits or the id more than 32. Texts
  /// of more than VEL_MAX_MESSAGE_LENGTH bytes are stored, but VelClMessage does not load them.
  bool setText(unsigned int language, unsigned long id, const char* text, size_t size);
  /// Same, but stores the bytes as they are: text in the ANSI code page that the programs use. At most 65,527
  /// bytes.
  bool setSingleByteText(unsigned int language, unsigned long id, const char* text, size_t size);

  /// Returns the contents of the file, valid until the next call of any function. Fails with
  /// CONUI_MSGCAT_CORRUPTED and DATA_OUT_OF_BOUNDS if there is no text, if there are 65,536 languages, or if
  /// the file would be larger than the 64 MB that VelClMessageCatalog reads.
  bool getBytes(const unsigned char*& bytes, size_t& size);
  /// Writes the file like VelClIniFileSave::save: after a crash at any point there is either the old file or
  /// the new one. Fails like getBytes, or with FILE_COULD_NOT_COPY and IO_PERMISSION_DENIED or
  /// IO_WRITE_PROBLEM.
  bool write();

 private:
  bool set(unsigned int language, unsigned long id, const char* text, size_t size, bool unicode);
  bool build();

  vel::messages::CatalogContents* contents_;
};

/// One message with its inserts expanded. It always has a text: if the message cannot be loaded, the text
/// says so and names the file of the catalog.
///
/// The placeholders are "%1" to "%10" in the text of the catalog; that of an insert that is not given, or is
/// null, becomes "???". Texts from a library follow all rules of the Windows message formatter ("%n", "%0",
/// "%1!8s!"); texts from a string table additionally support "%%".
class VEL_API VelClMessage {
 public:
  /// Loads the message. The catalog must outlive it.
  VelClMessage(const VelClMessageCatalog& catalog, unsigned long id);
  VelClMessage(const VelClMessageCatalog& catalog, unsigned long id, const char* var1,
               const char* var2 = nullptr, const char* var3 = nullptr, const char* var4 = nullptr,
               const char* var5 = nullptr, const char* var6 = nullptr, const char* var7 = nullptr,
               const char* var8 = nullptr, const char* var9 = nullptr, const char* var10 = nullptr);
  /// `inserts` points to ten pointers, or is null, which means no inserts.
  VelClMessage(const VelClMessageCatalog& catalog, unsigned long id, const char* const* inserts);
  VelClMessage(const VelClMessage& other);
  /// Copies text, id and validity; this message keeps its own catalog.
  VelClMessage& operator=(const VelClMessage& other);
  ~VelClMessage();

  /// Load another message of the same catalog and return its text. The inserts may point into the present
  /// text of this object.
  const char* setNewMessageId(unsigned long id);
  const char* setNewMessageId(unsigned long id, const char* var1, const char* var2 = nullptr,
                              const char* var3 = nullptr, const char* var4 = nullptr,
                              const char* var5 = nullptr, const char* var6 = nullptr,
                              const char* var7 = nullptr, const char* var8 = nullptr,
                              const char* var9 = nullptr, const char* var10 = nullptr);

  /// Returns the text; never null; valid until the message changes.
  const char* getAsCString() const { return text_; }
  /// Returns the requested number.
  unsigned long getId() const { return id_; }
  /// True if the text came from the catalog.
  bool isValid() const { return loaded_; }
  /// True if the text is too long, over 80 bytes, for the buffer inside the object.
  bool hasAllocatedMemory() const { return text_ != inline_; }

 private:
  static constexpr size_t kInlineLength = 80;

  const char* loadMessage(uint32_t id, const char* const* inserts);
  unsigned long replaceVars(char* out, unsigned long maxLength, const char* source,
                            const char* const* inserts, unsigned long insertCount) const;
  size_t buildFailureText(uint32_t id, char* out) const;
  void store(const char* text, size_t length);

  const VelClMessageCatalog& catalog_;
  char inline_[kInlineLength + 1];
  char* text_;
  uint32_t id_;
  bool loaded_;
};

/// Writes the text of the message.
VEL_API std::ostream& operator<<(std::ostream& stream, const VelClMessage& message);

/// A handle for a catalog, owned or not, with a buffer for one text.
class VEL_API VelClMessageCatalogProxy {
 public:
  /// Opens and owns a catalog.
  explicit VelClMessageCatalogProxy(const VelClFilename& name);
  /// Same; if its library cannot be loaded the table is attached.
  VelClMessageCatalogProxy(const VelClFilename& name, const char* const* table, unsigned long size);
  /// Refers to a catalog that its owner keeps.
  explicit VelClMessageCatalogProxy(const VelClMessageCatalog* catalog);
  VelClMessageCatalogProxy(const VelClMessageCatalogProxy&) = delete;
  VelClMessageCatalogProxy& operator=(const VelClMessageCatalogProxy&) = delete;
  ~VelClMessageCatalogProxy();

  /// True if the library of the catalog is loaded.
  bool isValid() const;
  /// True if the message can be loaded.
  bool isValidMessageId(unsigned long id) const;
  /// Returns the language number that the catalog selected, or 0 without a library.
  unsigned int getLanguage() const;
  /// Returns the message, or a text that says why it cannot be loaded, in this object's buffer; valid until
  /// the next call.
  const char* getMessage(unsigned long id);
  /// Same with inserts, see VelClMessage.
  const char* getMessage(unsigned long id, const char* const* inserts);

 private:
  bool owned_;
  const VelClMessageCatalog* catalog_;
  char text_[VEL_MAX_MESSAGE_LENGTH + 1];
};

/// A language combined with a territory: a country or region. Both are rows of fixed tables, of languages
/// (ISO 639 codes) and of territories (ISO 3166 codes), as the codes were in 1997. They are unrelated to the
/// language numbers of the system. All texts are literals, and codes are in lower case.
class VEL_API VelClLanguage {
 public:
  /// Row numbers of languages, in the order of the two-letter codes.
  enum VelEnLanguage : uint32_t {
    LANGUAGE_UNSPECIFIED = 0,  ///< row 0
    LANGUAGE_UNKNOWN = 143     ///< after the last row
  };
  /// Row numbers of territories, in the order of the two-letter codes.
  enum VelEnTerritory : uint32_t {
    TERRITORY_UNSPECIFIED = 0,  ///< row 0
    TERRITORY_UNKNOWN = 242     ///< after the last row
  };

  /// Return "-", the separator of the two codes; tags may use "_" instead.
  static const char* const cv_cpszCombiningCharString;
  static char getCombiningChar() { return '-'; }
  static const char* getCombiningCharAsCString() { return cv_cpszCombiningCharString; }

  /// Takes a combined number: the language in the high 16 bits, the territory in the low ones. Write zero as
  /// `0U`; a plain 0 is ambiguous.
  explicit VelClLanguage(unsigned int number);
  /// Parses a tag of two-letter codes in any case, such as "en-US", "en_us" or "en"; "x-all" and
  /// "x-unspecified" leave both unspecified. A code that is not in its table is unknown; so are three-letter
  /// codes. "_" is a separator only if the tag contains no "-". Null counts as "".
  explicit VelClLanguage(const char* tag);

  /// Returns the language of the current user: on Windows from the regional settings, on Linux from the first
  /// of LC_ALL, LC_MESSAGES and LANG that is set; en-US if these name none.
  static VelClLanguage getUserLanguage();

  /// Return the number that the constructor accepts, and the language and territory that it combines.
  unsigned int asNumber() const;
  VelEnLanguage getLanguage() const { return language_; }
  VelEnTerritory getTerritory() const { return territory_; }

  /// Return codes; here and below "??" if unknown.
  const char* getLanguageCode() const { return getLanguageCode(language_); }
  const char* getTerritoryCodeShort() const { return getTerritoryCodeShort(territory_); }
  const char* getTerritoryCodeLong() const { return getTerritoryCodeLong(territory_); }
  static const char* getLanguageCode(unsigned int language);
  static const char* getTerritoryCodeShort(unsigned int territory);
  static const char* getTerritoryCodeLong(unsigned int territory);
  /// Return names in English.
  static const char* getLanguageName(unsigned int language);
  static const char* getTerritoryName(unsigned int territory);
  /// Returns the ISO 3166 number; 0 for a territory without one, -1 if unknown.
  static int getTerritoryIdNumber(unsigned int territory);
  /// Return the number of rows in the tables, including "unspecified".
  static unsigned int getNumberOfLanguagesSupported();
  static unsigned int getNumberOfTerritoriesSupported();

  /// Write "en-us", or "en-usa", into a buffer of 7 or 8 bytes, which includes the NUL.
  void extractShortCode(char* out) const;
  void extractLongCode(char* out) const;
  /// Same, but write the language code alone if the territory is unspecified or unknown.
  void extractISOShortCode(char* out) const;
  void extractISOLongCode(char* out) const;

 private:
  void parse(const char* tag);
  bool namesTerritory() const;

  VelEnLanguage language_;
  VelEnTerritory territory_;
};

/// Returns the language alone, with the territory unspecified: "de" for "de-AT".
inline VelClLanguage velLanguageWithoutTerritory(const VelClLanguage& language) {
  return VelClLanguage(language.asNumber() & 0xFFFF0000U);
}

/// Writes "en-us", or "en" if the territory is unspecified, or "??" if either is unknown.
VEL_API std::ostream& operator<<(std::ostream& stream, const VelClLanguage& language);

#endif

#endif
