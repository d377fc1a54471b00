// Stub SDK: quality-of-service classes.
#pragma once

#ifdef __cplusplus
typedef enum qos_class : unsigned int {
#else
typedef enum qos_class {
#endif
  QOS_CLASS_UTILITY = 0x11,
} qos_class_t;
