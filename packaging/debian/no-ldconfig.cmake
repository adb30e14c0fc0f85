# CPack takes the module in /usr/lib/tagwright for a library that the system must be told of, and adds scripts that do it.
# The program finds its module by itself, so the package goes without any script.
foreach (package ${CPACK_PACKAGE_FILES})
    set (folder ${CPACK_TEMPORARY_DIRECTORY}-without-scripts)
    file (REMOVE_RECURSE ${folder})
    execute_process (COMMAND dpkg-deb -R ${package} ${folder} COMMAND_ERROR_IS_FATAL ANY)
    file (REMOVE ${folder}/DEBIAN/postinst ${folder}/DEBIAN/postrm)
    execute_process (COMMAND dpkg-deb --root-owner-group -b ${folder} ${package} COMMAND_ERROR_IS_FATAL ANY)
endforeach ()
