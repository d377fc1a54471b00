// Stub SDK: quality-of-service classes.
#pragma once

#ifdef __cplusplus
typedef enum qos_class : unsigned int {
#else
typedef enum qos_class {
#endif
  QOS_CLASS_USER_INTERACTIVE = 0x21,
  QOS_CLASS_USER_INITIATED = 0x19,
  QOS_CLASS_DEFAULT = 0x15,
  QOS_CLASS_UTILITY = 0x11,
  QOS_CLASS_BACKGROUND = 0x09,
  QOS_CLASS_UNSPECIFIED = 0x00,
} qos_class_t;
