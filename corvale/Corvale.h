/* Corvale.h: what an application includes. The 20 functions are in exports/CorvaleDllExports.h. */
#ifndef CORVALE_CORVALE_H
#define CORVALE_CORVALE_H

#include <corvale/exports/CorvaleDllExports.h>

#endif
