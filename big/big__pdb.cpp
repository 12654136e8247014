#include "big_frame.h"

#define BIG_SOURCE_PATH "big/big__pdb"

static MEM_INITIALIZER s_mem_initializer("BIG");
