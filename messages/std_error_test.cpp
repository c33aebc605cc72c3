// Tests the library's errors as errors of the standard library.
#include "vel_include/vel_std_error.h"

#include "platform/test/test.h"
#include "vel_include/vel_messages.h"

namespace {

TEST(StandardError, IdentifiersAreErrorCodes) {
  const std::error_code code = FILE_COULD_NOT_COPY;
  EXPECT_EQ(code, velErrorCode({FILE_COULD_NOT_COPY, VelEnErrorClass::IO_PROBLEM}));
  EXPECT_TRUE(code == FILE_COULD_NOT_COPY);
  EXPECT_FALSE(code == std::error_code(FILE_COULD_NOT_COPY, std::system_category()));
  EXPECT_FALSE(velErrorCode({}));
  EXPECT_EQ(code.message(), "FILE_COULD_NOT_COPY");
  // A program's own identifier, whose value as an int is negative.
  EXPECT_EQ(velErrorCode({0xFFFFFFFF, VelEnErrorClass::UNKNOWN}).message(), "4294967295");
}

TEST(StandardError, ClassesHaveConditions) {
  EXPECT_EQ(velErrorCondition(VelEnErrorClass::IO_NOT_EXISTENT), std::errc::no_such_file_or_directory);
  EXPECT_EQ(velErrorCondition(VelEnErrorClass::OUT_OF_MEMORY), std::errc::not_enough_memory);
  EXPECT_FALSE(velErrorCondition(VelEnErrorClass::HARDWARE_SETUP));
  EXPECT_FALSE(velErrorCondition(static_cast<VelEnErrorClass>(-1)));
}

/// Throws, for velRethrowAsStd.
int fail(VelEnErrorClass errorClass) {
  VelClExceptionFatal exception(FILE_COULD_NOT_COPY, errorClass, VelEnErrorAction::ABORT, "cause");
  exception.setOrigin("here", 7);
  throw exception;
}

TEST(StandardError, ExceptionsAreStandardExceptions) {
  try {
    velRethrowAsStd([] { return fail(VelEnErrorClass::IO_PROBLEM); });
    ADD_FAILURE();
  } catch (const std::system_error& caught) {
    EXPECT_TRUE(caught.code() == FILE_COULD_NOT_COPY);
    EXPECT_STREQ(caught.what(), "cause: FILE_COULD_NOT_COPY");
    const VelClException& original = dynamic_cast<const VelClStdException&>(caught).getException();
    EXPECT_STREQ(original.getOrigin(), "here");
    EXPECT_EQ(original.getSeverity(), VelEnErrorSeverity::FATAL);
    EXPECT_THROW(std::rethrow_if_nested(caught), VelClExceptionFatal);
  }
  try {
    velRethrowAsStd([] { return fail(VelEnErrorClass::OUT_OF_MEMORY); });
    ADD_FAILURE();
  } catch (const std::bad_alloc& caught) {
    EXPECT_STREQ(caught.what(), "cause");
  }
  const VelClException withoutCause({FILE_COULD_NOT_COPY, {}, {}, {}}, nullptr);
  EXPECT_STREQ(VelClStdException(withoutCause).what(), "FILE_COULD_NOT_COPY");
  EXPECT_THROW(velRethrowAsStd([] { throw std::out_of_range("other"); }), std::out_of_range);
}

TEST(StandardError, ResultsPassUnchanged) {
  int value = 5;
  velRethrowAsStd([&]() -> int& { return value; }) = 6;
  EXPECT_EQ(value, 6);
  EXPECT_EQ(velRethrowAsStd([value] { return value + 1; }), 7);
}

}  // namespace
