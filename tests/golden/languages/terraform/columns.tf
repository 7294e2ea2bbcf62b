/* <@text:anchor#overview> */
variable "width" {
  type        = number
  description = "The width of a column without a width"
  default     = 12 # <@control:slider#width [16,18] {"min":1,"max":40}>
}

locals {
  widths = {
    name = var.width
    size = 8
  }
  # <@task#sum>
  gaps  = 2 * (length(local.widths) - 1)
  total = sum(values(local.widths)) + local.gaps // <@output#total [2,7] {"format":"short"}>
  # <@task#sum>
}

output "characters" {
  value = local.total
}
# <@appendix>
# <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
