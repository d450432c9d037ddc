#pragma once

/// Marks what libshared_persistence exports; everything else in it is hidden.
#define SHARED_PERSISTENCE_EXPORT __attribute__((visibility("default")))
