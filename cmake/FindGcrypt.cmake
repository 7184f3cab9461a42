# Finds libgcrypt and defines the imported target Gcrypt::Gcrypt.
find_path(GCRYPT_INCLUDE_DIR gcrypt.h)
find_library(GCRYPT_LIBRARY NAMES gcrypt)
find_library(GPG_ERROR_LIBRARY NAMES gpg-error)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Gcrypt
    REQUIRED_VARS GCRYPT_LIBRARY GPG_ERROR_LIBRARY GCRYPT_INCLUDE_DIR)

if(Gcrypt_FOUND AND NOT TARGET Gcrypt::Gcrypt)
    add_library(Gcrypt::Gcrypt UNKNOWN IMPORTED)
    set_target_properties(Gcrypt::Gcrypt PROPERTIES
        IMPORTED_LOCATION "${GCRYPT_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${GCRYPT_INCLUDE_DIR}"
        INTERFACE_LINK_LIBRARIES "${GPG_ERROR_LIBRARY}")
endif()
mark_as_advanced(GCRYPT_INCLUDE_DIR GCRYPT_LIBRARY GPG_ERROR_LIBRARY)
