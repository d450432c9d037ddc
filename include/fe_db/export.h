#pragma once

/// Marks what libfe_db exports; everything else in it is hidden. A class that is marked exports all
/// of its members but those that are marked as hidden.
#define FE_DB_EXPORT __attribute__((visibility("default")))
#define FE_DB_HIDDEN __attribute__((visibility("hidden")))
