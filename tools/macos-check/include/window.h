// Precompiled for the files of the windows, all of which read most of this through Qt anyway.

#include "poison.h"

#include <QFuture>
#include <QWidget>
