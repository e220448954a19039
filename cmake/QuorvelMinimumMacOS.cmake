# For the compiler, which is told of it before the project begins, and for the Info.plist.
set(CMAKE_OSX_DEPLOYMENT_TARGET 13.0 CACHE STRING "The oldest macOS that the programs run on")
