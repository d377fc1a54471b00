// Stub SDK: CGFloat (64-bit).
#pragma once
typedef double CGFloat;
