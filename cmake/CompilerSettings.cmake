# One interface target carries the flags that every target of the project shares.
add_library(veyla_settings INTERFACE)

target_compile_options(veyla_settings INTERFACE
  -Wall -Wextra -Wshadow -Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual -Wconversion)
target_compile_definitions(veyla_settings INTERFACE
  QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_FOREACH
  VEYLA_VERSION="${PROJECT_VERSION}"
  VEYLA_WEB_HOST="${VEYLA_WEB_HOST}"
  VEYLA_UPDATE_FEED="${VEYLA_UPDATE_FEED}"
  VEYLA_UPDATE_PUBLIC_KEY="${VEYLA_UPDATE_PUBLIC_KEY}")

if(VEYLA_WARNINGS_AS_ERRORS)
  target_compile_options(veyla_settings INTERFACE -Werror)
endif()

if(VEYLA_SANITIZE)
  target_compile_options(veyla_settings INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_link_options(veyla_settings INTERFACE -fsanitize=address,undefined)
endif()

if(VEYLA_COVERAGE)
  target_compile_options(veyla_settings INTERFACE --coverage)
  target_link_options(veyla_settings INTERFACE --coverage)
endif()
