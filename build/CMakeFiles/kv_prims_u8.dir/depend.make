# Empty dependencies file for kv_prims_u8.
# This may be replaced when dependencies are built.
