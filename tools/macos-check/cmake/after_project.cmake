# The libraries are this system's own.
set(CMAKE_FIND_LIBRARY_SUFFIXES .so .a)
file(GLOB folders LIST_DIRECTORIES ON /usr/lib/*-linux-gnu)
list(GET folders 0 folder)
get_filename_component(CMAKE_LIBRARY_ARCHITECTURE "${folder}" NAME)
