/*
 * OrvaneImage Bayer demosaicing: the 81 routines
 * OVC_<BAY8|BAYn>_to_<output>_<method>_<phase>.
 */
#ifndef ORVANE_BAYER_H
#define ORVANE_BAYER_H

#include <orvane/types.h>

ORV_EXTERN_C_BEGIN

ORV_EXTERN_C_END

#endif /* ORVANE_BAYER_H */
