# Run by CPack before it packs: Debian requires manual pages and changelogs to be compressed.
set(root "${CPACK_TEMPORARY_DIRECTORY}")
file(GLOB_RECURSE pages "${root}/usr/share/man/*.[1-9]")
file(GLOB changelogs "${root}/usr/share/doc/*/changelog" "${root}/usr/share/doc/*/changelog.Debian")
foreach(file IN LISTS pages changelogs)
  execute_process(COMMAND gzip -9nf "${file}" COMMAND_ERROR_IS_FATAL ANY)
endforeach()
