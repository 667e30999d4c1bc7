if(VEMBA_SANITIZE)
  add_compile_options(-fsanitize=${VEMBA_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${VEMBA_SANITIZE})
endif()
