// The plain functions of the library, for C programs and for C++ compilers whose ABI differs
// from the library's. In a C++ program include either this header or the others.
#ifndef VEL_C_H_
#define VEL_C_H_

#if defined(__cplusplus) && !defined(VEL_EXPORT_H_)
#define VEL_PLAIN_FUNCTIONS_ONLY
#endif

#include "vel_codepage.h"
#include "vel_error.h"
#include "vel_files.h"
#include "vel_filesys.h"
#include "vel_helpers.h"
#include "vel_memmgr.h"
#include "vel_messages.h"
#include "vel_path.h"
#include "vel_process.h"
#include "vel_quoting.h"
#include "vel_status.h"
#include "vel_trace.h"
#include "vel_trace_reader.h"
#include "vel_utf8.h"
#include "vel_util.h"

#endif
