// cppmicroservices/GlobalConfig.h - macros that name the symbols of a bundle library
//
// A bundle library exports a few extern "C" functions whose names end with
// the bundle's name, US_BUNDLE_NAME (a C identifier the build defines for
// each bundle): the activator's factory and destroyer, which
// CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR defines, and the functions that
// CPPMICROSERVICES_INITIALIZE_BUNDLE defines. The macros here spell those
// names, so that a bundle and the framework that loads it agree on them:
//
//   US_CREATE_ACTIVATOR_FUNC(clock_bundle)   // _us_create_activator_clock_bundle
//   US_STR(US_BUNDLE_NAME)                    // "clock_bundle" when built as that bundle

#ifndef CPPMICROSERVICES_GLOBALCONFIG_H
#define CPPMICROSERVICES_GLOBALCONFIG_H

#if defined(__linux__)
#define US_PLATFORM_LINUX
#endif
#if defined(__APPLE__)
#define US_PLATFORM_APPLE
#endif
#if defined(_WIN32) || defined(_WIN64)
#define US_PLATFORM_WINDOWS
#else
#define US_PLATFORM_POSIX
#endif

// Visibility of the symbols a bundle exports; a library built with hidden
// visibility by default still exports what is marked US_ABI_EXPORT.
#if defined(US_PLATFORM_WINDOWS)
#define US_ABI_EXPORT __declspec(dllexport)
#define US_ABI_IMPORT __declspec(dllimport)
#define US_ABI_LOCAL
#else
#define US_ABI_EXPORT __attribute__((visibility("default")))
#define US_ABI_IMPORT __attribute__((visibility("default")))
#define US_ABI_LOCAL __attribute__((visibility("hidden")))
#endif

// Marks a variable or an expression result as used on purpose.
#define US_UNUSED(x) (void)(x)

// The text of a macro's value, and the token made of two tokens, each
// after macro expansion.
#define US_STR_(x) #x
#define US_STR(x) US_STR_(x)
#define US_CONCAT_(x, y) x##y
#define US_CONCAT(x, y) US_CONCAT_(x, y)

// The per-bundle functions, by bundle name `bsn`.
#define US_GET_CTX_PREFIX _us_get_bundle_context_instance_
#define US_SET_CTX_PREFIX _us_set_bundle_context_instance_
#define US_CTX_INS_PREFIX _us_bundle_context_instance_
#define US_GET_CTX_FUNC(bsn) US_CONCAT(US_GET_CTX_PREFIX, bsn)
#define US_SET_CTX_FUNC(bsn) US_CONCAT(US_SET_CTX_PREFIX, bsn)
#define US_CTX_INS(bsn) US_CONCAT(US_CTX_INS_PREFIX, bsn)

#define US_CREATE_ACTIVATOR_PREFIX _us_create_activator_
#define US_DESTROY_ACTIVATOR_PREFIX _us_destroy_activator_
#define US_CREATE_ACTIVATOR_FUNC(bsn) US_CONCAT(US_CREATE_ACTIVATOR_PREFIX, bsn)
#define US_DESTROY_ACTIVATOR_FUNC(bsn) US_CONCAT(US_DESTROY_ACTIVATOR_PREFIX, bsn)

#endif  // CPPMICROSERVICES_GLOBALCONFIG_H
