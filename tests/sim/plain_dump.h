// plain_dump.h: the dump of a stack in its plainest form, by printf, as a twin for tests and benchmarks.
#pragma once
#include <cstdio>
#include "process/stack.h"

void plain_dump(std::FILE *file, const Stack *stack);
