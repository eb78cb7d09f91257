# Runs before the first file is installed; see CMakeLists.txt.

# Creates `folder` and its parents with mode 0755. CMake's own would follow the umask, so that root could
# install files that no other user can reach.
function(kivo_make_folder folder)
  if(EXISTS "${folder}")
    return()
  endif()
  get_filename_component(parent "${folder}" DIRECTORY)
  kivo_make_folder("${parent}")
  file(MAKE_DIRECTORY "${folder}")
  file(CHMOD "${folder}" PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
endfunction()
foreach(folder ${KIVO_FOLDERS})
  kivo_make_folder("$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}/${folder}")
endforeach()

# The date in the packaged files: SOURCE_DATE_EPOCH if set, as scripts/package does.
string(TIMESTAMP KIVO_RELEASE_DATE "%Y-%m-%d" UTC)
string(TIMESTAMP KIVO_RELEASE_TIME "%a, %d %b %Y %H:%M:%S +0000" UTC)

file(READ ${KIVO_PACKAGING}/systemd/confinement.conf KIVO_CONFINEMENT)
string(STRIP "${KIVO_CONFINEMENT}" KIVO_CONFINEMENT)
file(READ ${KIVO_PACKAGING}/systemd/private-users.conf KIVO_PRIVATE_USERS)
string(STRIP "${KIVO_PRIVATE_USERS}" KIVO_PRIVATE_USERS)
file(REMOVE_RECURSE ${KIVO_WRITTEN})
file(MAKE_DIRECTORY ${KIVO_WRITTEN})
