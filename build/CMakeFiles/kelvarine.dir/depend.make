# Empty dependencies file for kelvarine.
# This may be replaced when dependencies are built.
