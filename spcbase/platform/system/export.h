/// The mark of what the shared library shows to its hosts: everything else is hidden.
#pragma once

/// Stands before every exported class and function.
#define SPCBASE_API __attribute__((visibility("default")))
