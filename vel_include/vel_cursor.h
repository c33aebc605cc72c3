// The bases of all cursors: objects that walk over the elements of something.
#ifndef VEL_CURSOR_H_
#define VEL_CURSOR_H_

#include "vel_export.h"

#if defined(VEL_HAS_CLASSES)

/// Walks forward. Every move returns isValid after it, so that a walk reads
/// `for (bool more = c.setToFirst(); more; more = c.setToNext())`.
class VEL_API VelClUniDirCursorABase {
 public:
  VelClUniDirCursorABase() = default;
  VelClUniDirCursorABase(const VelClUniDirCursorABase&) = default;
  VelClUniDirCursorABase& operator=(const VelClUniDirCursorABase&) = default;
  virtual ~VelClUniDirCursorABase();

  /// Whether the cursor stands on an element.
  virtual bool isValid() const = 0;
  /// Move; without an element there, the cursor becomes invalid.
  virtual bool setToFirst() = 0;
  virtual bool setToNext() = 0;
};

/// Walks both ways.
class VEL_API VelClBiDirCursorABase : public VelClUniDirCursorABase {
 public:
  VelClBiDirCursorABase() = default;
  VelClBiDirCursorABase(const VelClBiDirCursorABase&) = default;
  VelClBiDirCursorABase& operator=(const VelClBiDirCursorABase&) = default;
  ~VelClBiDirCursorABase() override;

  /// Move, as those of VelClUniDirCursorABase do.
  virtual bool setToLast() = 0;
  virtual bool setToPrevious() = 0;
};

#endif

#endif
