/// \file version.h
/// The version of these headers, to compare at compile time, or with what odxGetVersion says of the library:
///
///     #if ONDRIX_VERSION < ONDRIX_VERSION_NUMBER(1, 7, 0)
///     #error "Ondrix 1.7 or later is needed"
///     #endif
///     char version[sizeof ONDRIX_VERSION_TEXT];
///     odxGetVersion(version, sizeof version);
///     if (strcmp(version, ONDRIX_VERSION_TEXT) != 0) puts("headers and library are of different versions");
#ifndef ONDRIX_VERSION_H
#define ONDRIX_VERSION_H

#define ONDRIX_VERSION_MAJOR 1
#define ONDRIX_VERSION_MINOR 7
#define ONDRIX_VERSION_PATCH 1
#define ONDRIX_VERSION_TEXT "1.7.1"

/// Numbers that order versions.
#define ONDRIX_VERSION_NUMBER(major, minor, patch) ((major)*1000000 + (minor)*1000 + (patch))
#define ONDRIX_VERSION ONDRIX_VERSION_NUMBER(ONDRIX_VERSION_MAJOR, ONDRIX_VERSION_MINOR, ONDRIX_VERSION_PATCH)

#endif
