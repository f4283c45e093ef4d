# Copies PICTURES to TARGET.
foreach(picture ${PICTURES})
  file(COPY ${picture} DESTINATION ${TARGET})
endforeach()
