# Chooses the framework: an installed CppMicroServices or the embedded one.
#
# In: TESSERA_FRAMEWORK, CMAKE_PREFIX_PATH. Out: QUENLITH_FRAMEWORK, "system" or "embedded", and with
# "system" the target platform::cppmicroservices over the installed one and QUENLITH_SCR_BUNDLE, the
# library of its Declarative Services runtime. Otherwise platform/cppmicroservices defines both.
set(TESSERA_FRAMEWORK auto CACHE STRING "auto, system or embedded")
set_property(CACHE TESSERA_FRAMEWORK PROPERTY STRINGS auto system embedded)
set(QUENLITH_FRAMEWORK_MINIMUM 3.8)

if(NOT TESSERA_FRAMEWORK MATCHES "^(auto|system|embedded)$")
  message(FATAL_ERROR "TESSERA_FRAMEWORK is '${TESSERA_FRAMEWORK}': use auto, system or embedded")
endif()

# Looks for an installed framework that is new enough; sets `found`, and `why` if there is none.
function(quenlith_find_framework found why)
  find_package(CppMicroServices ${QUENLITH_FRAMEWORK_MINIMUM} QUIET GLOBAL)
  set(${found} ${CppMicroServices_FOUND} PARENT_SCOPE)
  set(${why} "none is installed under CMAKE_PREFIX_PATH" PARENT_SCOPE)
  if(CppMicroServices_FOUND)
    set(CppMicroServices_VERSION "${CppMicroServices_VERSION}" PARENT_SCOPE)
    set(CppMicroServices_DIR "${CppMicroServices_DIR}" PARENT_SCOPE)
  elseif(CppMicroServices_CONSIDERED_VERSIONS)
    list(JOIN CppMicroServices_CONSIDERED_VERSIONS ", " versions)
    list(JOIN CppMicroServices_CONSIDERED_CONFIGS ", " files)
    set(${why} "version ${versions} (${files}) is not a 3.x of ${QUENLITH_FRAMEWORK_MINIMUM} or newer" PARENT_SCOPE)
  endif()
endfunction()

# The package of the runtime uses targets of two further packages without finding these.
function(quenlith_use_installed_framework)
  foreach(package IN ITEMS usServiceComponent ususAsyncWorkService usDeclarativeServices)
    find_package(${package} REQUIRED GLOBAL HINTS "${CppMicroServices_DIR}" NO_DEFAULT_PATH)
  endforeach()
  add_library(quenlith_cppmicroservices INTERFACE)
  add_library(platform::cppmicroservices ALIAS quenlith_cppmicroservices)
  target_link_libraries(quenlith_cppmicroservices INTERFACE CppMicroServices usServiceComponent)
  # The installed runtime is found by its path but has no search path for its own libraries: the loader uses
  # the program's, if that is an RPATH and not a RUNPATH.
  target_link_options(quenlith_cppmicroservices INTERFACE
    $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:LINKER:--disable-new-dtags>)
  set(QUENLITH_SCR_BUNDLE "$<TARGET_FILE:DeclarativeServices>" PARENT_SCOPE)
endfunction()

set(QUENLITH_FRAMEWORK embedded)
if(NOT TESSERA_FRAMEWORK STREQUAL "embedded")
  quenlith_find_framework(frameworkFound frameworkReason)
  if(frameworkFound)
    set(QUENLITH_FRAMEWORK system)
    quenlith_use_installed_framework()
    # An installed tree that is moved leaves the framework where it is.
    set(CMAKE_INSTALL_RPATH_USE_LINK_PATH ON)
    message(STATUS "Framework: installed CppMicroServices ${CppMicroServices_VERSION} (${CppMicroServices_DIR})")
  elseif(TESSERA_FRAMEWORK STREQUAL "system")
    message(FATAL_ERROR "TESSERA_FRAMEWORK is 'system', but of CppMicroServices ${frameworkReason}. "
      "Set CMAKE_PREFIX_PATH to an installed ${QUENLITH_FRAMEWORK_MINIMUM} or newer, or use 'embedded'.")
  else()
    message(STATUS "Framework: embedded (of CppMicroServices ${frameworkReason})")
  endif()
else()
  message(STATUS "Framework: embedded (as asked for)")
endif()
