# "cmake --build --preset lint": clang-format and clang-tidy over our own files.
# clang-tidy runs here, not through CMAKE_CXX_CLANG_TIDY, which would lint moc's output too.
find_program(CLANG_FORMAT clang-format-19)
find_program(CLANG_TIDY clang-tidy-19)
find_program(RUN_CLANG_TIDY run-clang-tidy-19)
add_custom_target(lint
    COMMAND sh -c "git ls-files '*.h' '*.cpp' '*.mm' | xargs ${CLANG_FORMAT} --dry-run --Werror"
    COMMAND ${RUN_CLANG_TIDY} -quiet -clang-tidy-binary ${CLANG_TIDY} -p ${PROJECT_BINARY_DIR}
            "^${PROJECT_SOURCE_DIR}/(src|tests|bench)/"
    WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
    VERBATIM)
