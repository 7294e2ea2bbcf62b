#pragma once

// Names of the C functions of a bundle: a fixed prefix, then the bundle's symbolic name, which
// the bundle's sources are compiled with as the macro US_BUNDLE_NAME. The first step expands it.
#define US_CONCAT_EXPANDED(prefix, name) prefix##name
#define US_CONCAT(prefix, name) US_CONCAT_EXPANDED(prefix, name)

#define US_CTX_INS(name) US_CONCAT(_us_bundle_context_instance_, name)
#define US_GET_CTX_FUNC(name) US_CONCAT(_us_get_bundle_context_instance_, name)
#define US_SET_CTX_FUNC(name) US_CONCAT(_us_set_bundle_context_instance_, name)
#define US_CREATE_ACTIVATOR_FUNC(name) US_CONCAT(_us_create_activator_, name)
#define US_DESTROY_ACTIVATOR_FUNC(name) US_CONCAT(_us_destroy_activator_, name)
