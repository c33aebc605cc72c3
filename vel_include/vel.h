// All C++ headers of the library.
#ifndef VEL_H_
#define VEL_H_

#include "vel_codepage.h"
#include "vel_consoleui.h"
#include "vel_conventions.h"
#include "vel_cursor.h"
#include "vel_environment.h"
#include "vel_error.h"
#include "vel_files.h"
#include "vel_filesys.h"
#include "vel_helpers.h"
#include "vel_inifile.h"
#include "vel_memmgr.h"
#include "vel_messages.h"
#include "vel_path.h"
#include "vel_process.h"
#include "vel_quoting.h"
#include "vel_status.h"
#include "vel_std_error.h"
#include "vel_strict_conversion.h"
#include "vel_trace.h"
#include "vel_trace_entry.h"
#include "vel_trace_formatter.h"
#include "vel_trace_reader.h"
#include "vel_utf8.h"
#include "vel_util.h"

#endif
