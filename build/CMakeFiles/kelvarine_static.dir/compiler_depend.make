# Empty compiler generated dependencies file for kelvarine_static.
# This may be replaced when dependencies are built.
