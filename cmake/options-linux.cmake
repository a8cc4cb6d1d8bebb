# The options of all targets on Linux.
if(QEL_HARDENING AND NOT QEL_SANITIZE)
  target_link_options(qel_options INTERFACE LINKER:-z,relro LINKER:-z,now)
endif()
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX) # applies CMAKE_POSITION_INDEPENDENT_CODE to the linking of programs too
