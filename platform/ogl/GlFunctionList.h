// The GL and GLU functions that the project calls, each as one row: result, name, parameters, arguments. The name is
// GL's without "gl" ("glu" in the second list). Included with VEK_GL (and VEK_GLU) defined; it has no include guard on
// purpose.
//
// The list makes the table of function pointers, its native and recording functions, and the members of Rgl of the same
// names.

#ifndef VEK_GLU
#define VEK_GLU VEK_GL
#endif

// Immediate mode
VEK_GL(void, Begin, (GlEnum p_mode), (p_mode))
VEK_GL(void, End, (), ())
VEK_GL(void, Vertex2i, (int p_x, int p_y), (p_x, p_y))
VEK_GL(void, Vertex3d, (double p_x, double p_y, double p_z), (p_x, p_y, p_z))
VEK_GL(void, Normal3d, (double p_x, double p_y, double p_z), (p_x, p_y, p_z))
VEK_GL(void, Color4d, (double p_red, double p_green, double p_blue, double p_alpha), (p_red, p_green, p_blue, p_alpha))
VEK_GL(void, TexCoord1d, (double p_s), (p_s))
VEK_GL(void, TexCoord2d, (double p_s, double p_t), (p_s, p_t))
VEK_GL(void, TexCoord3d, (double p_s, double p_t, double p_r), (p_s, p_t, p_r))
VEK_GL(void, MultiTexCoord3d, (GlEnum p_unit, double p_s, double p_t, double p_r), (p_unit, p_s, p_t, p_r))

// Matrices
VEK_GL(void, MatrixMode, (GlEnum p_mode), (p_mode))
VEK_GL(void, LoadIdentity, (), ())
VEK_GL(void, LoadMatrixd, (const double* p_elements), (p_elements))
VEK_GL(void, MultMatrixd, (const double* p_elements), (p_elements))
VEK_GL(void, PushMatrix, (), ())
VEK_GL(void, PopMatrix, (), ())
VEK_GL(void, Translated, (double p_x, double p_y, double p_z), (p_x, p_y, p_z))
VEK_GL(void, Scaled, (double p_x, double p_y, double p_z), (p_x, p_y, p_z))
VEK_GL(void, Rotated, (double p_degrees, double p_x, double p_y, double p_z), (p_degrees, p_x, p_y, p_z))
VEK_GL(void, Ortho, (double p_left, double p_right, double p_bottom, double p_top, double p_near, double p_far),
       (p_left, p_right, p_bottom, p_top, p_near, p_far))

// State
VEK_GL(void, Enable, (GlEnum p_capability), (p_capability))
VEK_GL(void, Disable, (GlEnum p_capability), (p_capability))
VEK_GL(GlBoolean, IsEnabled, (GlEnum p_capability), (p_capability))
VEK_GL(void, PushAttrib, (GlBitfield p_mask), (p_mask))
VEK_GL(void, PopAttrib, (), ())
VEK_GL(void, PushClientAttrib, (GlBitfield p_mask), (p_mask))
VEK_GL(void, PopClientAttrib, (), ())
VEK_GL(void, ClipPlane, (GlEnum p_plane, const double* p_equation), (p_plane, p_equation))
VEK_GL(void, Viewport, (int p_x, int p_y, int p_width, int p_height), (p_x, p_y, p_width, p_height))
VEK_GL(void, Scissor, (int p_x, int p_y, int p_width, int p_height), (p_x, p_y, p_width, p_height))
VEK_GL(void, ClearColor, (float p_red, float p_green, float p_blue, float p_alpha), (p_red, p_green, p_blue, p_alpha))
VEK_GL(void, ClearDepth, (double p_depth), (p_depth))
VEK_GL(void, Clear, (GlBitfield p_mask), (p_mask))
VEK_GL(void, ColorMask, (GlBoolean p_red, GlBoolean p_green, GlBoolean p_blue, GlBoolean p_alpha),
       (p_red, p_green, p_blue, p_alpha))
VEK_GL(void, DepthFunc, (GlEnum p_function), (p_function))
VEK_GL(void, DepthMask, (GlBoolean p_write), (p_write))
VEK_GL(void, DepthRange, (double p_near, double p_far), (p_near, p_far))
VEK_GL(void, StencilFunc, (GlEnum p_function, int p_reference, unsigned int p_mask), (p_function, p_reference, p_mask))
VEK_GL(void, StencilMask, (unsigned int p_mask), (p_mask))
VEK_GL(void, ClearStencil, (int p_value), (p_value))
VEK_GL(void, LogicOp, (GlEnum p_operation), (p_operation))
VEK_GL(void, BlendFunc, (GlEnum p_source, GlEnum p_destination), (p_source, p_destination))
VEK_GL(void, BlendFuncSeparate,
       (GlEnum p_sourceColor, GlEnum p_destinationColor, GlEnum p_sourceAlpha, GlEnum p_destinationAlpha),
       (p_sourceColor, p_destinationColor, p_sourceAlpha, p_destinationAlpha))
VEK_GL(void, CullFace, (GlEnum p_face), (p_face))
VEK_GL(void, FrontFace, (GlEnum p_winding), (p_winding))
VEK_GL(void, ShadeModel, (GlEnum p_model), (p_model))
VEK_GL(void, PolygonMode, (GlEnum p_face, GlEnum p_mode), (p_face, p_mode))
VEK_GL(void, PolygonOffset, (float p_factor, float p_units), (p_factor, p_units))
VEK_GL(void, PolygonStipple, (const unsigned char* p_mask), (p_mask))
VEK_GL(void, LineStipple, (int p_factor, unsigned short p_pattern), (p_factor, p_pattern))
VEK_GL(void, LineWidth, (float p_width), (p_width))
VEK_GL(void, PointSize, (float p_size), (p_size))
VEK_GL(void, PointParameterfv, (GlEnum p_name, const float* p_values), (p_name, p_values))
VEK_GL(void, Hint, (GlEnum p_target, GlEnum p_mode), (p_target, p_mode))
VEK_GL(void, AlphaFunc, (GlEnum p_function, float p_reference), (p_function, p_reference))
VEK_GL(void, Lightfv, (GlEnum p_light, GlEnum p_name, const float* p_values), (p_light, p_name, p_values))
VEK_GL(void, LightModelfv, (GlEnum p_name, const float* p_values), (p_name, p_values))
VEK_GL(void, LightModeli, (GlEnum p_name, int p_value), (p_name, p_value))
VEK_GL(void, Materialfv, (GlEnum p_face, GlEnum p_name, const float* p_values), (p_face, p_name, p_values))
VEK_GL(void, ColorMaterial, (GlEnum p_face, GlEnum p_mode), (p_face, p_mode))

// Queries
VEK_GL(GlEnum, GetError, (), ())
VEK_GL(const unsigned char*, GetString, (GlEnum p_name), (p_name))
VEK_GL(void, GetIntegerv, (GlEnum p_name, int* p_values), (p_name, p_values))
VEK_GL(void, GetFloatv, (GlEnum p_name, float* p_values), (p_name, p_values))
VEK_GL(void, GetDoublev, (GlEnum p_name, double* p_values), (p_name, p_values))
VEK_GL(void, Finish, (), ())

// Query objects
VEK_GL(void, GenQueries, (int p_count, unsigned int* p_names), (p_count, p_names))
VEK_GL(void, DeleteQueries, (int p_count, const unsigned int* p_names), (p_count, p_names))
VEK_GL(void, BeginQuery, (GlEnum p_target, unsigned int p_name), (p_target, p_name))
VEK_GL(void, EndQuery, (GlEnum p_target), (p_target))
VEK_GL(void, GetQueryObjectuiv, (unsigned int p_name, GlEnum p_what, unsigned int* p_values),
       (p_name, p_what, p_values))

// Textures and pixels
VEK_GL(void, ActiveTexture, (GlEnum p_unit), (p_unit))
VEK_GL(void, GenTextures, (int p_count, unsigned int* p_names), (p_count, p_names))
VEK_GL(void, DeleteTextures, (int p_count, const unsigned int* p_names), (p_count, p_names))
VEK_GL(void, BindTexture, (GlEnum p_target, unsigned int p_name), (p_target, p_name))
VEK_GL(void, TexParameteri, (GlEnum p_target, GlEnum p_name, int p_value), (p_target, p_name, p_value))
VEK_GL(void, TexEnvi, (GlEnum p_target, GlEnum p_name, int p_value), (p_target, p_name, p_value))
VEK_GL(void, TexGeni, (GlEnum p_coordinate, GlEnum p_name, int p_value), (p_coordinate, p_name, p_value))
VEK_GL(void, PixelStorei, (GlEnum p_name, int p_value), (p_name, p_value))
VEK_GL(void, PixelTransferf, (GlEnum p_name, float p_value), (p_name, p_value))
VEK_GL(void, TexImage2D,
       (GlEnum p_target, int p_level, int p_internalFormat, int p_width, int p_height, int p_border, GlEnum p_format,
        GlEnum p_type, const void* p_pixels),
       (p_target, p_level, p_internalFormat, p_width, p_height, p_border, p_format, p_type, p_pixels))
VEK_GL(void, TexImage3D,
       (GlEnum p_target, int p_level, int p_internalFormat, int p_width, int p_height, int p_depth, int p_border,
        GlEnum p_format, GlEnum p_type, const void* p_pixels),
       (p_target, p_level, p_internalFormat, p_width, p_height, p_depth, p_border, p_format, p_type, p_pixels))
VEK_GL(void, TexBuffer, (GlEnum p_target, GlEnum p_internalFormat, unsigned int p_buffer),
       (p_target, p_internalFormat, p_buffer))
VEK_GL(void, GetTexImage, (GlEnum p_target, int p_level, GlEnum p_format, GlEnum p_type, void* p_pixels),
       (p_target, p_level, p_format, p_type, p_pixels))
VEK_GL(void, GetTexLevelParameteriv, (GlEnum p_target, int p_level, GlEnum p_name, int* p_values),
       (p_target, p_level, p_name, p_values))
VEK_GL(void, GenerateMipmap, (GlEnum p_target), (p_target))
VEK_GL(void, ReadPixels, (int p_x, int p_y, int p_width, int p_height, GlEnum p_format, GlEnum p_type, void* p_pixels),
       (p_x, p_y, p_width, p_height, p_format, p_type, p_pixels))
VEK_GL(void, ReadBuffer, (GlEnum p_buffer), (p_buffer))
VEK_GL(void, DrawBuffer, (GlEnum p_buffer), (p_buffer))

// Display lists
VEK_GL(unsigned int, GenLists, (int p_count), (p_count))
VEK_GL(void, DeleteLists, (unsigned int p_name, int p_count), (p_name, p_count))
VEK_GL(void, NewList, (unsigned int p_name, GlEnum p_mode), (p_name, p_mode))
VEK_GL(void, EndList, (), ())
VEK_GL(void, CallList, (unsigned int p_name), (p_name))

// Buffers and vertex arrays
VEK_GL(void, GenBuffers, (int p_count, unsigned int* p_names), (p_count, p_names))
VEK_GL(void, DeleteBuffers, (int p_count, const unsigned int* p_names), (p_count, p_names))
VEK_GL(void, BindBuffer, (GlEnum p_target, unsigned int p_name), (p_target, p_name))
VEK_GL(void, BufferData, (GlEnum p_target, GlSize p_size, const void* p_data, GlEnum p_usage),
       (p_target, p_size, p_data, p_usage))
VEK_GL(void, BufferSubData, (GlEnum p_target, GlSize p_offset, GlSize p_size, const void* p_data),
       (p_target, p_offset, p_size, p_data))
VEK_GL(void, GetBufferSubData, (GlEnum p_target, GlSize p_offset, GlSize p_size, void* p_data),
       (p_target, p_offset, p_size, p_data))
VEK_GL(void*, MapBufferRange, (GlEnum p_target, GlSize p_offset, GlSize p_length, GlBitfield p_access),
       (p_target, p_offset, p_length, p_access))
VEK_GL(GlBoolean, UnmapBuffer, (GlEnum p_target), (p_target))
VEK_GL(void, EnableClientState, (GlEnum p_array), (p_array))
VEK_GL(void, DisableClientState, (GlEnum p_array), (p_array))
VEK_GL(void, ClientActiveTexture, (GlEnum p_unit), (p_unit))
VEK_GL(void, VertexPointer, (int p_size, GlEnum p_type, int p_stride, const void* p_pointer),
       (p_size, p_type, p_stride, p_pointer))
VEK_GL(void, NormalPointer, (GlEnum p_type, int p_stride, const void* p_pointer), (p_type, p_stride, p_pointer))
VEK_GL(void, ColorPointer, (int p_size, GlEnum p_type, int p_stride, const void* p_pointer),
       (p_size, p_type, p_stride, p_pointer))
VEK_GL(void, TexCoordPointer, (int p_size, GlEnum p_type, int p_stride, const void* p_pointer),
       (p_size, p_type, p_stride, p_pointer))
VEK_GL(void, DrawArrays, (GlEnum p_mode, int p_first, int p_count), (p_mode, p_first, p_count))
VEK_GL(void, DrawElements, (GlEnum p_mode, int p_count, GlEnum p_type, const void* p_indices),
       (p_mode, p_count, p_type, p_indices))
VEK_GL(void, DrawArraysInstanced, (GlEnum p_mode, int p_first, int p_count, int p_instances),
       (p_mode, p_first, p_count, p_instances))
VEK_GL(void, DrawElementsInstanced, (GlEnum p_mode, int p_count, GlEnum p_type, const void* p_indices, int p_instances),
       (p_mode, p_count, p_type, p_indices, p_instances))
VEK_GL(void, EnableVertexAttribArray, (unsigned int p_index), (p_index))
VEK_GL(void, DisableVertexAttribArray, (unsigned int p_index), (p_index))
VEK_GL(void, VertexAttribPointer,
       (unsigned int p_index, int p_size, GlEnum p_type, GlBoolean p_normalized, int p_stride, const void* p_pointer),
       (p_index, p_size, p_type, p_normalized, p_stride, p_pointer))
VEK_GL(void, VertexAttribDivisor, (unsigned int p_index, unsigned int p_divisor), (p_index, p_divisor))

// Frame buffers
VEK_GL(void, GenFramebuffers, (int p_count, unsigned int* p_names), (p_count, p_names))
VEK_GL(void, DeleteFramebuffers, (int p_count, const unsigned int* p_names), (p_count, p_names))
VEK_GL(void, BindFramebuffer, (GlEnum p_target, unsigned int p_name), (p_target, p_name))
VEK_GL(void, FramebufferTexture2D,
       (GlEnum p_target, GlEnum p_attachment, GlEnum p_textureTarget, unsigned int p_name, int p_level),
       (p_target, p_attachment, p_textureTarget, p_name, p_level))
VEK_GL(void, FramebufferRenderbuffer,
       (GlEnum p_target, GlEnum p_attachment, GlEnum p_renderbufferTarget, unsigned int p_name),
       (p_target, p_attachment, p_renderbufferTarget, p_name))
VEK_GL(GlEnum, CheckFramebufferStatus, (GlEnum p_target), (p_target))
VEK_GL(void, BlitFramebuffer,
       (int p_x0, int p_y0, int p_x1, int p_y1, int p_toX0, int p_toY0, int p_toX1, int p_toY1, GlBitfield p_mask,
        GlEnum p_filter),
       (p_x0, p_y0, p_x1, p_y1, p_toX0, p_toY0, p_toX1, p_toY1, p_mask, p_filter))
VEK_GL(void, GenRenderbuffers, (int p_count, unsigned int* p_names), (p_count, p_names))
VEK_GL(void, DeleteRenderbuffers, (int p_count, const unsigned int* p_names), (p_count, p_names))
VEK_GL(void, BindRenderbuffer, (GlEnum p_target, unsigned int p_name), (p_target, p_name))
VEK_GL(void, RenderbufferStorageMultisample,
       (GlEnum p_target, int p_samples, GlEnum p_internalFormat, int p_width, int p_height),
       (p_target, p_samples, p_internalFormat, p_width, p_height))

// Shaders
VEK_GL(unsigned int, CreateShader, (GlEnum p_type), (p_type))
VEK_GL(void, DeleteShader, (unsigned int p_name), (p_name))
VEK_GL(void, ShaderSource, (unsigned int p_name, int p_count, const char* const* p_texts, const int* p_lengths),
       (p_name, p_count, p_texts, p_lengths))
VEK_GL(void, CompileShader, (unsigned int p_name), (p_name))
VEK_GL(void, GetShaderiv, (unsigned int p_name, GlEnum p_what, int* p_values), (p_name, p_what, p_values))
VEK_GL(void, GetShaderInfoLog, (unsigned int p_name, int p_room, int* p_length, char* p_text),
       (p_name, p_room, p_length, p_text))
VEK_GL(unsigned int, CreateProgram, (), ())
VEK_GL(void, DeleteProgram, (unsigned int p_name), (p_name))
VEK_GL(void, AttachShader, (unsigned int p_program, unsigned int p_shader), (p_program, p_shader))
VEK_GL(void, BindAttribLocation, (unsigned int p_program, unsigned int p_index, const char* p_attribute),
       (p_program, p_index, p_attribute))
VEK_GL(void, LinkProgram, (unsigned int p_name), (p_name))
VEK_GL(void, GetProgramiv, (unsigned int p_name, GlEnum p_what, int* p_values), (p_name, p_what, p_values))
VEK_GL(void, GetProgramInfoLog, (unsigned int p_name, int p_room, int* p_length, char* p_text),
       (p_name, p_room, p_length, p_text))
VEK_GL(void, UseProgram, (unsigned int p_name), (p_name))
VEK_GL(int, GetUniformLocation, (unsigned int p_program, const char* p_uniform), (p_program, p_uniform))
VEK_GL(void, Uniform1i, (int p_location, int p_value), (p_location, p_value))
VEK_GL(void, Uniform1f, (int p_location, float p_value), (p_location, p_value))
VEK_GL(void, Uniform3f, (int p_location, float p_x, float p_y, float p_z), (p_location, p_x, p_y, p_z))
VEK_GL(void, Uniform4f, (int p_location, float p_x, float p_y, float p_z, float p_w), (p_location, p_x, p_y, p_z, p_w))
VEK_GL(void, UniformMatrix4fv, (int p_location, int p_count, GlBoolean p_transpose, const float* p_elements),
       (p_location, p_count, p_transpose, p_elements))

// GL utility library: quadrics
VEK_GLU(GlQuadric*, NewQuadric, (), ())
VEK_GLU(void, DeleteQuadric, (GlQuadric * p_quadric), (p_quadric))
VEK_GLU(void, QuadricDrawStyle, (GlQuadric * p_quadric, GlEnum p_style), (p_quadric, p_style))
VEK_GLU(void, QuadricNormals, (GlQuadric * p_quadric, GlEnum p_normals), (p_quadric, p_normals))
VEK_GLU(void, Cylinder,
        (GlQuadric * p_quadric, double p_base, double p_top, double p_height, int p_slices, int p_stacks),
        (p_quadric, p_base, p_top, p_height, p_slices, p_stacks))
VEK_GLU(void, Disk, (GlQuadric * p_quadric, double p_inner, double p_outer, int p_slices, int p_loops),
        (p_quadric, p_inner, p_outer, p_slices, p_loops))
VEK_GLU(void, PartialDisk,
        (GlQuadric * p_quadric, double p_inner, double p_outer, int p_slices, int p_loops, double p_start,
         double p_sweep),
        (p_quadric, p_inner, p_outer, p_slices, p_loops, p_start, p_sweep))
VEK_GLU(void, Sphere, (GlQuadric * p_quadric, double p_radius, int p_slices, int p_stacks),
        (p_quadric, p_radius, p_slices, p_stacks))

#undef VEK_GL
#undef VEK_GLU
