# The options of all targets on Windows. Windows 10 is the oldest one.
target_compile_definitions(qel_options INTERFACE UNICODE _UNICODE _WIN32_WINNT=0x0A00 WINVER=0x0A00)
target_link_options(qel_options INTERFACE "$<$<CONFIG:Release>:-s>")
if(QEL_HARDENING)
  target_link_options(qel_options INTERFACE -fstack-protector-strong LINKER:--dynamicbase,--nxcompat)
  if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    target_link_options(qel_options INTERFACE LINKER:--high-entropy-va)
  endif()
endif()
