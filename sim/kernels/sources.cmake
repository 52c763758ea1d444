# What sim_kernels is made of, here and where it is built once more without vector types.
set(SIM_KERNEL_SOURCES offsets.cpp offsets_sorted.cpp disc.cpp disc_shape.cpp disc_count.cpp grid_dilate.cpp
  grid_window.cpp grid_smooth.cpp mask.cpp mask_filter.cpp distance_transform.cpp taper.cpp etch_kernels.cpp)
