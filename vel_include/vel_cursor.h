// The base classes of all cursors, which iterate over the elements of a collection.
#ifndef VEL_CURSOR_H_
#define VEL_CURSOR_H_

#include "vel_export.h"

#if defined(VEL_HAS_CLASSES)

/// A forward cursor. Every move returns the new value of isValid, which allows loops such as `for (bool more
/// = c.setToFirst(); more; more = c.setToNext())`.
class VEL_API VelClUniDirCursorABase {
 public:
  VelClUniDirCursorABase() = default;
  VelClUniDirCursorABase(const VelClUniDirCursorABase&) = default;
  VelClUniDirCursorABase& operator=(const VelClUniDirCursorABase&) = default;
  virtual ~VelClUniDirCursorABase();

  /// True if the cursor is on an element.
  virtual bool isValid() const = 0;
  /// Move to the first or the next element; without such an element the cursor becomes invalid.
  virtual bool setToFirst() = 0;
  virtual bool setToNext() = 0;
};

/// A cursor that moves in both directions.
class VEL_API VelClBiDirCursorABase : public VelClUniDirCursorABase {
 public:
  VelClBiDirCursorABase() = default;
  VelClBiDirCursorABase(const VelClBiDirCursorABase&) = default;
  VelClBiDirCursorABase& operator=(const VelClBiDirCursorABase&) = default;
  ~VelClBiDirCursorABase() override;

  /// Move to the last or the previous element; without such an element the cursor becomes invalid.
  virtual bool setToLast() = 0;
  virtual bool setToPrevious() = 0;
};

#endif

#endif
