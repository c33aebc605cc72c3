# UTF-8 as the encoding of a program's texts on Windows. find_package(qamc5032) defines the function.
#
# qamc5032_utf8_manifest(<target>)
#
# Adds a manifest to the program <target> that sets its active code page to UTF-8, which Windows 10 of version 1903 and
# later obeys: the arguments of main, and the names that the program and all of its libraries pass to the system, are
# UTF-8 then, without a call of velUseUtf8. On older systems the code page stays as it is; a program that calls velUseUtf8
# as well uses UTF-8 for what it does through this library there, too. The target must not have another manifest. Does
# nothing for other systems.
function(qamc5032_utf8_manifest target)
  get_target_property(type ${target} TYPE)
  if(NOT type STREQUAL EXECUTABLE)
    message(FATAL_ERROR "qamc5032_utf8_manifest: ${target} is not a program, and Windows reads only a program's manifest")
  endif()
  if(NOT WIN32)
    return()
  endif()
  set(manifest ${CMAKE_CURRENT_BINARY_DIR}/${target}_utf8.manifest)
  file(CONFIGURE OUTPUT ${manifest} @ONLY CONTENT [[
<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0">
  <application xmlns="urn:schemas-microsoft-com:asm.v3">
    <windowsSettings>
      <activeCodePage xmlns="http://schemas.microsoft.com/SMI/2019/WindowsSettings">UTF-8</activeCodePage>
    </windowsSettings>
  </application>
</assembly>
]])
  if(MSVC)
    # CMake gives it to the linker, which merges it with its own.
    target_sources(${target} PRIVATE ${manifest})
    return()
  endif()
  # Resource 1 of type 24 is the manifest of a program.
  set(resource ${CMAKE_CURRENT_BINARY_DIR}/${target}_utf8.rc)
  file(CONFIGURE OUTPUT ${resource} CONTENT "1 24 \"${manifest}\"\n")
  set_source_files_properties(${resource} PROPERTIES OBJECT_DEPENDS ${manifest})
  target_sources(${target} PRIVATE ${resource})
endfunction()
