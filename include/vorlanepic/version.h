/*
 * The version of the headers of VorlanePic and its image library. Hosts that are built with one
 * version run with every later one of the same VORLANEPIC_VERSION_MAJOR.
 */
#ifndef VORLANEPIC_VERSION_H
#define VORLANEPIC_VERSION_H

#define VORLANEPIC_VERSION_MAJOR 1
#define VORLANEPIC_VERSION_MINOR 0
#define VORLANEPIC_VERSION_PATCH 0
#define VORLANEPIC_VERSION_NUMBER \
  (VORLANEPIC_VERSION_MAJOR * 10000 + VORLANEPIC_VERSION_MINOR * 100 + VORLANEPIC_VERSION_PATCH)
#define VORLANEPIC_VERSION_STRING "1.0.0"

#endif
