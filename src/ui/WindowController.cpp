#include "ui/WindowController.h" // IWYU pragma: keep, for the class's meta object
