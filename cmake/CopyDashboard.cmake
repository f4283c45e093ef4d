# Copies what the dashboard needs at run time from SOURCE to TARGET, and nothing else.
file(REMOVE_RECURSE ${TARGET})
file(MAKE_DIRECTORY ${TARGET})
foreach(part server.js package.json lib page)
  if(EXISTS ${SOURCE}/${part})
    file(COPY ${SOURCE}/${part} DESTINATION ${TARGET})
  endif()
endforeach()
