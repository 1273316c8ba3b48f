# Empty compiler generated dependencies file for kv_prims_m7.
# This may be replaced when dependencies are built.
