// Stub SDK: host statistics calls. Each *Cnt argument is in/out, in units of integer_t.
#pragma once
#include <mach/host_info.h>
#include <mach/mach_types.h>
#include <mach/processor_info.h>
#include <mach/vm_statistics.h>

QM_STUB_EXTERN_C_BEGIN
kern_return_t host_statistics(host_t host_priv, host_flavor_t flavor, host_info_t host_info_out,
                              mach_msg_type_number_t* host_info_outCnt);
kern_return_t host_statistics64(host_t host_priv, host_flavor_t flavor, host_info64_t host_info64_out,
                                mach_msg_type_number_t* host_info64_outCnt);
kern_return_t host_page_size(host_t host, vm_size_t* out_page_size);
kern_return_t host_processor_info(host_t host, processor_flavor_t flavor, natural_t* out_processor_count,
                                  processor_info_array_t* out_processor_info,
                                  mach_msg_type_number_t* out_processor_infoCnt);
QM_STUB_EXTERN_C_END
