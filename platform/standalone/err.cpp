#include "err_sys.h"
