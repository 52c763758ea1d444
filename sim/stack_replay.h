// stack_replay.h: the steps of a run once more. A run keeps the heights of its last step only; those of any
// other come back when the same steps are run on a stack of their own, bit for bit, since a step depends on
// nothing else.
#pragma once
#include "process/stack.h"

// A stack with settings, grid, steps and polygons of `run`, without layers, as it was before the first step.
// Steps, polygons and tables are those of `run`, which must stay. Freed with stack_replay_free. On a thread
// without an OpenGL context.
Stack *stack_replay_create(const Stack *run);

// What a replay takes for each grid point, bytes, as far as the layers that the run was left with tell.
i64 stack_replay_point_bytes(const Stack *run);

// Frees what is the replay's own; null is ignored.
void stack_replay_free(Stack *replay);

struct ReplayFreed {
    void operator()(Stack *replay) const { stack_replay_free(replay); }
};

using OwnedReplay = std::unique_ptr<Stack, ReplayFreed>;

// Runs a step, and brings the stack up to date as the run has done before its picture. The console is told
// nothing, and a dump is not written again. On the worker.
void stack_replay_step(Stack *replay, i32 index);
