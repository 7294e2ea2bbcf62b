# Chooses the framework: an installed CppMicroServices or the embedded one.
set(TESSERA_FRAMEWORK auto CACHE STRING "auto, system or embedded")
set_property(CACHE TESSERA_FRAMEWORK PROPERTY STRINGS auto system embedded)
