# cmake -DFROM=folder -DTO=folder -P copy_folder.cmake: copies the folder's files that changed, below TO.
# file (COPY) leaves alone what has the same time stamp, and takes names with semicolons as they are.
file (COPY "${FROM}" DESTINATION "${TO}")
