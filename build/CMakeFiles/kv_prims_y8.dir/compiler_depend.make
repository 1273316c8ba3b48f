# Empty compiler generated dependencies file for kv_prims_y8.
# This may be replaced when dependencies are built.
