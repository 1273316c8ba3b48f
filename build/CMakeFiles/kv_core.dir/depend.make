# Empty dependencies file for kv_core.
# This may be replaced when dependencies are built.
