#pragma once

/// Marks what libfe_db exports; everything else in it is hidden.
#define FE_DB_EXPORT __attribute__((visibility("default")))
